#include "system/factorycommand.h"

#include "system/paths.h"

#include <QRegularExpression>

QStringList calibrationPauseCommand()
{
    return {"sleep", "2"};
}

QStringList echoPauseCommand()
{
    return {"sleep", "0.2"};
}

QStringList sessionAsideCommand()
{
    return {"mv", Paths::sessionScript, Paths::sessionScriptAside};
}

QStringList removeFileCommand(const QString &path)
{
    return {"rm", path};
}

QStringList interfaceListCommand()
{
    return {"ifconfig"};
}

QStringList beepCommand()
{
    return {"beep"};
}

QStringList toneCommand(const QString &frequency, const QString &duration)
{
    return {"beep", "-f", frequency, "-l", duration};
}

QStringList presetToneCommand(const QString &buttonText)
{
    constexpr QLatin1String prefix("Beep f:");
    static const QRegularExpression separator("[: ]");
    const QStringList parts = buttonText.mid(prefix.size()).split(separator);
    return toneCommand(parts.value(0), parts.value(2)); // between them stands the "t"
}
