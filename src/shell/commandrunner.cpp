#include "shell/biosinterface.h"

#include "system/debugtext.h"
#include "system/run/process.h"

#include <QDebug>
#include <QProcessEnvironment>

QPair<QString, QString> BiosInterface::doProcess(const QString &program,
                                                 const QStringList &arguments, int timeout)
{
    const Command command
        = arguments.isEmpty() ? splitCommandLine(program) : Command{program, arguments};
    const ToolResult result = runTool(command, {.limit = std::chrono::milliseconds(timeout)});
    const QString output = byteText(result.output);
    const QString errors = byteText(result.errors);
    qDebug().noquote() << __func__ << quotedText(program) << quotedList(arguments)
                       << result.hasFinished() << quotedText(output) << quotedText(errors);
    return {output, result.hasFinished() ? errors : "not finished"};
}

QPair<QString, QString> BiosInterface::doProcess(const Command &command,
                                                 std::chrono::milliseconds limit)
{
    return doProcess(command.tool, command.arguments, static_cast<int>(limit.count()));
}

void BiosInterface::echoEnviromentProcess(const QString &)
{
    qDebug().noquote() << quotedList(QProcessEnvironment::systemEnvironment().toStringList());
}
