#include "system/run/factorycommand.h"

#include "system/paths.h"
#include "system/run/tools.h"

#include <QRegularExpression>

Command calibrationPauseCommand()
{
    return toolCommand(Tool::Sleep, {"2"});
}

Command echoPauseCommand()
{
    return toolCommand(Tool::Sleep, {"0.2"});
}

Command sessionAsideCommand()
{
    return toolCommand(Tool::Mv, {Paths::sessionScript, Paths::sessionScriptAside});
}

Command removeFileCommand(const QString &path)
{
    return toolCommand(Tool::Rm, {path});
}

Command interfaceListCommand()
{
    return toolCommand(Tool::Ifconfig);
}

Command beepCommand()
{
    return toolCommand(Tool::Beep);
}

Command toneCommand(const QString &frequency, const QString &duration)
{
    return toolCommand(Tool::Beep, {"-f", frequency, "-l", duration});
}

Command presetToneCommand(const QString &buttonText)
{
    constexpr QLatin1String prefix("Beep f:");
    static const QRegularExpression separator("[: ]");
    const QStringList parts = buttonText.mid(prefix.size()).split(separator);
    return toneCommand(parts.value(0), parts.value(2)); // part 1 is the "t"
}
