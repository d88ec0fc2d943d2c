// Takes a picture of everything that the program can show on this screen:
// takepictures [OPTION]... STORED CHANGED compares them with those in the folder STORED and leaves
// those that differ in the folder CHANGED.

#include "inputpanel/platformbridge.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "picturebook.h"
#include "stoppedclock.h"
#include "system/startup.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QCursor>
#include <QLoggingCategory>
#include <QScreen>

#include <cstdio>

namespace {
const QCommandLineOption layoutsOption("layouts", "Leaves out what looks alike on all screens.");
const QCommandLineOption modelOption("model", "The model of the panel.", "model");
} // namespace

int main(int argc, char *argv[])
{
    requirePanel();
    shieldFromEnvironment();
    selectInputContextPlugin();
    const QApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addOptions({layoutsOption, modelOption});
    parser.addPositionalArgument("STORED", "Folder with the stored pictures.");
    parser.addPositionalArgument("CHANGED", "Folder for the pictures that differ.");
    parser.process(application);
    const QStringList folders = parser.positionalArguments();
    if (folders.size() != 2) {
        std::fputs(qPrintable(parser.helpText()), stderr);
        return 2;
    }
    if (parser.isSet(modelOption)) {
        writePanelFile("model", parser.value(modelOption).toUtf8());
    }
    QLoggingCategory::setFilterRules("default.debug=false"); // it would hide what the book says
    QApplication::setCursorFlashTime(0);                     // it stands still
    // Nobody points at a touch panel.
    QCursor::setPos(QGuiApplication::primaryScreen()->geometry().bottomRight());
    const StoppedClock clock;
    PictureBook book(folders.at(0), folders.at(1),
                     parser.isSet(layoutsOption) ? Extent::Layouts : Extent::Everything);
    takeSettingsPictures(book);
    takeFactoryPictures(book);
    return book.finish() == 0 ? 0 : 1;
}
