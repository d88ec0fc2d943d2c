#include "system/xrandroutput.h"

#include <QList>
#include <QStringView>

QString connectedOutputName(const QString &xrandrOutput)
{
    QStringView name;
    for (const QStringView line : QStringView(xrandrOutput).split('\n')) {
        if (line.isEmpty()) {
            break;
        }
        if (line.contains(QLatin1String(" connected "))) { // blanks: not "disconnected"
            name = line.left(line.indexOf(' '));
        }
    }
    return name.toString();
}
