#include "system/tools.h"

QStringList toolCommand(Tool tool, const QStringList &arguments)
{
    return QStringList(QLatin1String(toolNames[size_t(tool)])) + arguments;
}
