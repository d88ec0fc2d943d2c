#include "system/factorycommand.h"

#include "system/paths.h"
#include "system/tools.h"

#include <QRegularExpression>

QStringList calibrationPauseCommand()
{
    return toolCommand(Tool::Sleep, {"2"});
}

QStringList echoPauseCommand()
{
    return toolCommand(Tool::Sleep, {"0.2"});
}

QStringList sessionAsideCommand()
{
    return toolCommand(Tool::Mv, {Paths::sessionScript, Paths::sessionScriptAside});
}

QStringList removeFileCommand(const QString &path)
{
    return toolCommand(Tool::Rm, {path});
}

QStringList interfaceListCommand()
{
    return toolCommand(Tool::Ifconfig);
}

QStringList beepCommand()
{
    return toolCommand(Tool::Beep);
}

QStringList toneCommand(const QString &frequency, const QString &duration)
{
    return toolCommand(Tool::Beep, {"-f", frequency, "-l", duration});
}

QStringList presetToneCommand(const QString &buttonText)
{
    constexpr QLatin1String prefix("Beep f:");
    static const QRegularExpression separator("[: ]");
    const QStringList parts = buttonText.mid(prefix.size()).split(separator);
    return toneCommand(parts.value(0), parts.value(2)); // between them stands the "t"
}
