#include "factory/softwaresetup.h"
#include "inputpanel/platformbridge.h"
#include "shell/biosinterface.h"
#include "system/paths.h"
#include "system/run/commandline.h"
#include "system/run/process.h"
#include "system/startup.h"
#include "widgets/touchstyle.h"

#include <QApplication>
#include <QFile>

namespace {
QWidget *createWindow()
{
    if (!QFile::exists(Paths::factoryMarker)) {
        return new BiosInterface; // sets the style itself
    }
    QApplication::setStyle(new TouchStyle);
    return new SoftwareSetup;
}
} // namespace

int main(int argc, char *argv[])
{
    if (isVersionQuery(argc, argv)) {
        printVersion();
        return 0;
    }
    shieldFromEnvironment();
    selectInputContextPlugin();
    const QApplication application(argc, argv);
    runAndWait(startPauseCommand());

    // Never deleted: it lives as long as the process, even while the HMI runtime covers it.
    static QWidget *const window = createWindow();
    window->show();
    return QApplication::exec();
}
