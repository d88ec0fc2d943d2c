// Takes a picture of everything that the program can show on this screen:
// takepictures STORED CHANGED compares them with those in the folder STORED and leaves those that
// differ in the folder CHANGED.

#include "inputpanel/platformbridge.h"
#include "panelguard.h"
#include "picturebook.h"
#include "stoppedclock.h"
#include "system/startup.h"

#include <QApplication>
#include <QCursor>
#include <QLoggingCategory>
#include <QScreen>

#include <cstdio>

int main(int argc, char *argv[])
{
    requirePanel();
    shieldFromEnvironment();
    selectInputContextPlugin();
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("Usage: takepictures STORED CHANGED\n", stderr);
        return 2;
    }
    QLoggingCategory::setFilterRules("default.debug=false"); // it would hide what the book says
    QApplication::setCursorFlashTime(0);                     // it stands still
    // Nobody points at a touch panel.
    QCursor::setPos(QGuiApplication::primaryScreen()->geometry().bottomRight());
    const StoppedClock clock;
    PictureBook book(arguments.at(1), arguments.at(2));
    takeSettingsPictures(book);
    takeFactoryPictures(book);
    return book.finish() == 0 ? 0 : 1;
}
