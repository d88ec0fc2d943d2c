#include "shell/biosinterface.h"

#include "system/commandline.h"
#include "system/process.h"

#include <QDateTimeEdit>

void BiosInterface::setScreenSaving()
{
    runAndWait(screenSavingCommand(m_settings.value("app.screensaving")), settingLimit);
}

void BiosInterface::setScreenOrientation()
{
    runAndWait(orientationCommand(m_displayOutput, m_settings.value("app.orientation")),
               settingLimit);
}

void BiosInterface::setBackLighting()
{
    runAndWait(brightnessCommand(m_displayOutput, m_settings.value("bios.brightness")),
               settingLimit);
}

/// To what the time editor shows at this moment.
void BiosInterface::setSystemTime()
{
    runAndWait(clockCommand(m_misc.time->dateTime()), settingLimit);
    runAndWait(hardwareClockCommand(), settingLimit);
}
