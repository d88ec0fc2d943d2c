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
        m_rescuePoll->stop(); // rescue mode starts only once per run of the program
        rescueMode();
    }
}

/// Searches for the touch controller unless it is already known.
/// Returns false if the tool hangs: the next query of this poll would hang as well.
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

/// Makes a panel usable again whose backlight is off or whose touch screen is out of calibration.
void BiosInterface::rescueMode()
{
    const Command fullBrightness = brightnessCommand(m_displayOutput, "1");
    m_settings.insert(SettingsKeys::brightness, QString(QChar(rescueBrightness)));
    writeINI();
    runAndWait(fullBrightness, m_limits.tool);
    runAndWait(calibrationCommand());
}
