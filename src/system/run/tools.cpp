#include "system/run/tools.h"

Command toolCommand(Tool tool, const QStringList &arguments)
{
    return {QLatin1String(toolNames[size_t(tool)]), arguments};
}
