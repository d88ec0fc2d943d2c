// Makes one save and kills itself at its call NUMBER: savestep WHAT NUMBER. Exits with status 0 if
// the save needs fewer calls.

#include "countedcalls.h"
#include "filecare.h"
#include "packages/packageinstaller.h"
#include "panelguard.h"
#include "restore.h"
#include "settingspage.h"
#include "system/files/atomicfile.h"
#include "system/files/filecopy.h"
#include "system/files/versionfiles.h"
#include "system/paths.h"
#include "system/settings/settingsfile.h"
#include "system/startup.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QTest>

namespace {
/// Enters a fixed address for the second port and taps OK.
void saveNetwork(int number)
{
    const SettingsPage page("Ethernet:3", "kept=1\n");
    QTest::mouseClick(page.page()->findChild<QAbstractButton *>("manual_input_radioButton2"),
                      Qt::LeftButton);
    page.page()->findChild<QLineEdit *>("ip_address_lineEdit2")->setText("10.0.0.9");
    killAtCall(number);
    page.leave("ok");
    killAtCall(0); // the save is complete
}

void saveSettings(int number)
{
    killAtCall(number);
    writeSettingsFile(Paths::settingsFile, {{"kept", "1"}, {"new", "1"}});
}

void saveVersion(int number)
{
    killAtCall(number);
    setCurrentRuntimeVersion(13);
}

void saveRules(int number)
{
    killAtCall(number);
    replaceFile(Paths::namingRulesFile, "new\n");
}

void copyFont(int number)
{
    killAtCall(number);
    copyToNewFile("/media/usb0/new.ttf", QString(Paths::fontFolder) + "new.ttf");
}

void installApplication(int number)
{
    killAtCall(number);
    installPackage("/media/usb0/package");
}

/// What the guard does at boot.
void repairFiles(int number)
{
    killAtCall(number);
    Guard::restoreFiles();
}

/// What the guard does after a file was written.
void copyFiles(int number)
{
    Guard::FileCare care;
    care.findFiles();
    care.noteAll();
    killAtCall(number);
    care.careForDueFiles();
}

struct Save
{
    const char *name;
    void (*run)(int number);
};

constexpr Save saves[] = {
    {"application", installApplication},
    {"copies", copyFiles},
    {"font", copyFont},
    {"network", saveNetwork},
    {"repair", repairFiles},
    {"rules", saveRules},
    {"settings", saveSettings},
    {"version", saveVersion},
};
} // namespace

int main(int argc, char *argv[])
{
    requirePanel();
    shieldFromEnvironment();
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    for (const Save &save : saves) {
        if (arguments.size() == 3 && arguments.at(1) == save.name) {
            save.run(arguments.at(2).toInt());
            killAtCall(0); // a coverage build now writes its counters, which do not count
            return EXIT_SUCCESS;
        }
    }
    return EXIT_FAILURE;
}
