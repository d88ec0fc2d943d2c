#include "shell/biosinterface.h"

#include "system/commandline.h"
#include "system/process.h"
#include "system/settingskeys.h"

#include <QDateTimeEdit>

void BiosInterface::setScreenSaving()
{
    runAndWait(screenSavingCommand(m_settings.value(SettingsKeys::screenSaving)), settingLimit);
}

void BiosInterface::setScreenOrientation()
{
    runAndWait(orientationCommand(m_displayOutput, m_settings.value(SettingsKeys::orientation)),
               settingLimit);
}

void BiosInterface::setBackLighting()
{
    runAndWait(brightnessCommand(m_displayOutput, m_settings.value(SettingsKeys::brightness)),
               settingLimit);
}

/// To what the time editor shows at this moment.
void BiosInterface::setSystemTime()
{
    runAndWait(clockCommand(m_misc.time->dateTime()), settingLimit);
    runAndWait(hardwareClockCommand(), settingLimit);
}
