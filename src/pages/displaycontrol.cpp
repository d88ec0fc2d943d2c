#include "shell/biosinterface.h"

#include "system/run/commandline.h"
#include "system/run/process.h"
#include "system/settings/settingskeys.h"

#include <QDateTimeEdit>

void BiosInterface::setScreenSaving()
{
    runAndWait(screenSavingCommand(m_settings.value(SettingsKeys::screenSaving)), m_limits.tool);
}

void BiosInterface::setScreenOrientation()
{
    runAndWait(orientationCommand(m_displayOutput, m_settings.value(SettingsKeys::orientation)),
               m_limits.tool);
}

void BiosInterface::setBackLighting()
{
    runAndWait(brightnessCommand(m_displayOutput, m_settings.value(SettingsKeys::brightness)),
               m_limits.tool);
}

/// Sets the clock to the time that the editor shows, not to the time of the last edit.
void BiosInterface::setSystemTime()
{
    runAndWait(clockCommand(m_misc.time->dateTime()), m_limits.tool);
    runAndWait(hardwareClockCommand(), m_limits.tool);
}
