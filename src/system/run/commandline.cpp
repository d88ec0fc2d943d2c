#include "system/run/commandline.h"

#include "system/paths.h"
#include "system/run/tools.h"
#include "system/settings/settingskeys.h"

namespace {
QString applicationPath(const char *below)
{
    return QString(Paths::applicationFolder) + QLatin1String(below);
}
} // namespace

Command startPauseCommand()
{
    return toolCommand(Tool::Sleep, {"1"});
}

Command outputQueryCommand()
{
    return toolCommand(Tool::Xrandr, {"-q"});
}

Command deviceListCommand()
{
    return toolCommand(Tool::Xinput, {"--list", "--name-only"});
}

Command deviceStateCommand(const QString &device)
{
    return toolCommand(Tool::Xinput, {"query-state", device});
}

Command screenSavingCommand(const QString &minutes)
{
    const qint64 seconds = qint64(minutes.toInt()) * 60; // 0 if not a number
    if (seconds == 0) {
        return toolCommand(Tool::Xset, {"-dpms", "s", "noexpose"});
    }
    return toolCommand(Tool::Xset, {"s", QString::number(seconds)});
}

Command orientationCommand(const QString &output, const QString &orientation)
{
    const QString stored = orientation.simplified().toLower();
    const bool upright = stored.isEmpty() || stored == QLatin1String("horizontal");
    return toolCommand(
        Tool::Xrandr, {"--output", output, "--rotate", QLatin1String(upright ? "normal" : "left")});
}

Command brightnessCommand(const QString &output, const QString &brightness)
{
    const QString stored = brightness.simplified().toLower();
    return toolCommand(
        Tool::Xrandr,
        {"--output", output, "--brightness", stored.isEmpty() ? QString("1") : stored});
}

Command clockCommand(const QDateTime &time)
{
    return toolCommand(Tool::Date, {time.toString("MMddhhmmyyyy")});
}

Command hardwareClockCommand()
{
    return toolCommand(Tool::Hwclock, {"-w"});
}

Command calibrationCommand()
{
    return toolCommand(Tool::XCal);
}

Command addressQueryCommand(const QString &interface)
{
    return toolCommand(Tool::Ifconfig, {interface});
}

Command setAddressCommand(const QString &interface, const QString &address)
{
    return toolCommand(Tool::Ifconfig, {interface, address});
}

Command obtainLeaseCommand(const QString &interface)
{
    return toolCommand(Tool::Dhclient, {interface});
}

Command releaseLeaseCommand()
{
    return toolCommand(Tool::Dhclient, {ethernetKeys(0).interface, "-r"});
}

Command runtimeCommand()
{
    return toolCommand(Tool::Shell, {Paths::runtimeScript});
}

Command unpackCommand(const QString &path)
{
    return toolCommand(Tool::Tar, {"-zxvf", path});
}

Command removeOldApplicationCommand()
{
    return toolCommand(Tool::Rm, {"-rf", applicationPath("/compile")});
}

Command removeOldFirmwareCommand()
{
    return toolCommand(Tool::Rm, {"-rf", "/homde/dest"});
}

Command syncCommand()
{
    return toolCommand(Tool::Sync);
}

Command applicationSizeCommand()
{
    return toolCommand(Tool::Du, {"-h", applicationPath("/")});
}
