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

QStringList runtimeCommand()
{
    return {"/bin/sh", Paths::runtimeScript};
}
