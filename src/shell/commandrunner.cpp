#include "shell/biosinterface.h"

#include "system/debugtext.h"
#include "system/process.h"

#include <QDebug>
#include <QProcessEnvironment>

QPair<QString, QString> BiosInterface::doProcess(const QString &program,
                                                 const QStringList &arguments, int timeout)
{
    const QStringList command
        = arguments.isEmpty() ? splitCommandLine(program) : QStringList{program} + arguments;
    const ProcessResult result = runLimited(command, std::chrono::milliseconds(timeout));
    const QString output = byteText(result.output);
    const QString errors = byteText(result.errors);
    qDebug().noquote() << __func__ << quotedText(program) << quotedList(arguments)
                       << result.finished << quotedText(output) << quotedText(errors);
    return {output, result.finished ? errors : "not finished"};
}

void BiosInterface::echoEnviromentProcess(const QString &)
{
    qDebug().noquote() << quotedList(QProcessEnvironment::systemEnvironment().toStringList());
}
