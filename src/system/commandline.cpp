#include "system/commandline.h"

#include "system/paths.h"
#include "system/tools.h"

QStringList startPauseCommand()
{
    return toolCommand(Tool::Sleep, {"1"});
}

QStringList outputQueryCommand()
{
    return toolCommand(Tool::Xrandr, {"-q"});
}

QStringList deviceListCommand()
{
    return toolCommand(Tool::Xinput, {"--list", "--name-only"});
}

QStringList deviceStateCommand(const QString &device)
{
    return toolCommand(Tool::Xinput, {"query-state", device});
}

QStringList screenSavingCommand(const QString &minutes)
{
    const qint64 seconds = qint64(minutes.toInt()) * 60; // no number: 0
    if (seconds == 0) {
        return toolCommand(Tool::Xset, {"-dpms", "s", "noexpose"});
    }
    return toolCommand(Tool::Xset, {"s", QString::number(seconds)});
}

QStringList orientationCommand(const QString &output, const QString &orientation)
{
    const QString stored = orientation.simplified().toLower();
    const bool upright = stored.isEmpty() || stored == QLatin1String("horizontal");
    return toolCommand(
        Tool::Xrandr, {"--output", output, "--rotate", QLatin1String(upright ? "normal" : "left")});
}

QStringList brightnessCommand(const QString &output, const QString &brightness)
{
    const QString stored = brightness.simplified().toLower();
    return toolCommand(
        Tool::Xrandr,
        {"--output", output, "--brightness", stored.isEmpty() ? QString("1") : stored});
}

QStringList clockCommand(const QDateTime &time)
{
    return toolCommand(Tool::Date, {time.toString("MMddhhmmyyyy")});
}

QStringList hardwareClockCommand()
{
    return toolCommand(Tool::Hwclock, {"-w"});
}

QStringList calibrationCommand()
{
    return toolCommand(Tool::XCal);
}

QStringList addressQueryCommand(const QString &interface)
{
    return toolCommand(Tool::Ifconfig, {interface});
}

QStringList setAddressCommand(const QString &interface, const QString &address)
{
    return toolCommand(Tool::Ifconfig, {interface, address});
}

QStringList obtainLeaseCommand(const QString &interface)
{
    return toolCommand(Tool::Dhclient, {interface});
}

QStringList releaseLeaseCommand()
{
    return toolCommand(Tool::Dhclient, {"eth0", "-r"});
}

QStringList runtimeCommand()
{
    return toolCommand(Tool::Shell, {Paths::runtimeScript});
}

QStringList unpackCommand(const QString &path)
{
    return toolCommand(Tool::Tar, {"-zxvf", path});
}

QStringList removeOldApplicationCommand()
{
    return toolCommand(Tool::Rm, {"-rf", "/home/dest/compile"});
}

QStringList removeOldFirmwareCommand()
{
    return toolCommand(Tool::Rm, {"-rf", "/homde/dest"});
}

QStringList syncCommand()
{
    return toolCommand(Tool::Sync);
}

QStringList applicationSizeCommand()
{
    return toolCommand(Tool::Du, {"-h", "/home/dest/"});
}
