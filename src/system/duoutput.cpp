#include "system/duoutput.h"

#include <QStringList>

QString diskUsageTotal(const QString &duOutput)
{
    const QStringList lines = duOutput.split('\n');
    // the output ends with a line end, so the last part is behind it
    return lines.size() < 2 ? QString() : lines.at(lines.size() - 2).section('\t', 0, 0);
}
