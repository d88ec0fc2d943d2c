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
