#include "system/commandline.h"

#include "system/paths.h"

QStringList startPauseCommand()
{
    return {"sleep", "1"};
}

QStringList outputQueryCommand()
{
    return {"xrandr", "-q"};
}

QStringList deviceListCommand()
{
    return {"xinput", "--list", "--name-only"};
}

QStringList deviceStateCommand(const QString &device)
{
    return {"xinput", "query-state", device};
}

QStringList screenSavingCommand(const QString &minutes)
{
    const qint64 seconds = qint64(minutes.toInt()) * 60; // no number: 0
    if (seconds == 0) {
        return {"xset", "-dpms", "s", "noexpose"};
    }
    return {"xset", "s", QString::number(seconds)};
}

QStringList orientationCommand(const QString &output, const QString &orientation)
{
    const QString stored = orientation.simplified().toLower();
    const bool upright = stored.isEmpty() || stored == QLatin1String("horizontal");
    return {"xrandr", "--output", output, "--rotate", QLatin1String(upright ? "normal" : "left")};
}

QStringList brightnessCommand(const QString &output, const QString &brightness)
{
    const QString stored = brightness.simplified().toLower();
    return {"xrandr", "--output", output, "--brightness", stored.isEmpty() ? QString("1") : stored};
}

QStringList clockCommand(const QDateTime &time)
{
    return {"date", time.toString("MMddhhmmyyyy")};
}

QStringList hardwareClockCommand()
{
    return {"hwclock", "-w"};
}

QStringList calibrationCommand()
{
    return {"xCal"};
}

QStringList addressQueryCommand(const QString &interface)
{
    return {"ifconfig", interface};
}

QStringList setAddressCommand(const QString &interface, const QString &address)
{
    return {"ifconfig", interface, address};
}

QStringList obtainLeaseCommand(const QString &interface)
{
    return {"dhclient", interface};
}

QStringList releaseLeaseCommand()
{
    return {"dhclient", "eth0", "-r"};
}

QStringList runtimeCommand()
{
    return {"/bin/sh", Paths::runtimeScript};
}

QStringList unpackCommand(const QString &path)
{
    return {"tar", "-zxvf", path};
}

QStringList removeOldApplicationCommand()
{
    return {"rm", "-rf", "/home/dest/compile"};
}

QStringList removeOldFirmwareCommand()
{
    return {"rm", "-rf", "/homde/dest"};
}

QStringList syncCommand()
{
    return {"sync"};
}

QStringList applicationSizeCommand()
{
    return {"du", "-h", "/home/dest/"};
}
