#include "system/output/tooloutput.h"

#include <QList>
#include <QStringList>
#include <QStringView>

namespace {
constexpr QLatin1String firstButton("button[1]=");

/// The first line of @p text that holds @p part, without its line end. Null if there is none.
QStringView firstLineWith(const QString &text, QLatin1String part)
{
    for (const QStringView line : QStringView(text).split('\n')) {
        if (line.contains(part)) {
            return line.endsWith('\r') ? line.chopped(1) : line;
        }
    }
    return {};
}
} // namespace

QString connectedOutputName(const QString &xrandrOutput)
{
    QStringView name;
    for (const QStringView line : QStringView(xrandrOutput).split('\n')) {
        if (line.isEmpty()) {
            break;
        }
        if (line.contains(QLatin1String(" connected "))) { // the blanks exclude "disconnected"
            name = line.left(line.indexOf(' '));
        }
    }
    return name.toString();
}

QString touchDeviceName(const QString &deviceList)
{
    return firstLineWith(deviceList, touchControllerName).toString();
}

TouchState firstButtonState(const QString &deviceState)
{
    const QStringView line = firstLineWith(deviceState, firstButton);
    if (line.isEmpty()) {
        return TouchState::Unknown;
    }
    const QString state = line.split('=').at(1).toString().simplified();
    return state == QLatin1String("up") ? TouchState::Up : TouchState::Down;
}

QString diskUsageTotal(const QString &duOutput)
{
    const QStringList lines = duOutput.split('\n');
    // The last part is the empty text after the final line feed.
    return lines.size() < 2 ? QString() : lines.at(lines.size() - 2).section('\t', 0, 0);
}
