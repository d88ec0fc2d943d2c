#include "shell/biosinterface.h"

#include "system/output/tooloutput.h"
#include "system/run/commandline.h"
#include "system/run/process.h"
#include "system/settings/displaychoices.h"
#include "system/settings/settingskeys.h"

#include <QDateTime>
#include <QDebug>

namespace {
constexpr QLatin1String unknownDevice("null");
} // namespace

void BiosInterface::slotRescueTimesup()
{
    if (!findTouchDevice()) {
        return;
    }
    if (m_touchDevice.isEmpty()) {
        qDebug().noquote() << Q_FUNC_INFO << "Device Name Error";
        return;
    }
    const QString state = readOutput(deviceStateCommand(m_touchDevice), m_limits.tool);
    if (m_pressTimer.poll(firstButtonState(state), QDateTime::currentMSecsSinceEpoch())) {
        m_rescuePoll->stop(); // for good: rescue comes once in a run of the program
        rescueMode();
    }
}

/// Looks for the touch controller while it is not known.
/// Result: false if the tool hangs; asking it a second time in this poll would hang as well.
bool BiosInterface::findTouchDevice()
{
    if (!m_touchDevice.contains(unknownDevice)) {
        return true;
    }
    const ToolResult list = runTool(deviceListCommand(), {.limit = m_limits.tool});
    const QString name = touchDeviceName(QString::fromLocal8Bit(list.output));
    if (!name.isEmpty()) {
        m_touchDevice = name;
    }
    return list.hasFinished();
}

/// The way back for a panel whose backlight is black or whose touch is off.
void BiosInterface::rescueMode()
{
    const Command fullBrightness = brightnessCommand(m_displayOutput, "1");
    m_settings.insert(SettingsKeys::brightness, QString(QChar(rescueBrightness)));
    writeINI();
    runAndWait(fullBrightness, m_limits.tool);
    runAndWait(calibrationCommand());
}
