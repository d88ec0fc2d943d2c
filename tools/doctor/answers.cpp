#include "answers.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace Doctor {
namespace {
constexpr qsizetype longestExcerpt = 60; // characters

bool endedWell(const Facts &facts, Question question)
{
    const auto &answered = facts.answer(question);
    return answered && answered->answer.end == ToolResult::End::Ended
        && answered->answer.status == 0;
}

/// What happened to a tool that did not succeed.
QString fateOf(const ToolResult &answer, qint64 limit)
{
    switch (answer.end) {
    case ToolResult::End::NotStarted:
        return "cannot be started";
    case ToolResult::End::CutOff:
        return QString("hangs: no answer within %1 s").arg(double(limit) / 1000);
    case ToolResult::End::Stopped:
        return "never stops writing";
    case ToolResult::End::Crashed:
        return "crashes";
    case ToolResult::End::Ended:
        break;
    }
    const QString said = shortened(QString::fromLocal8Bit(answer.errors));
    return QString("fails with status %1%2")
        .arg(QString::number(answer.status), said.isEmpty() ? QString() : ": " + said);
}
} // namespace

std::optional<Finding> badAnswer(const Facts &facts, Question question, const QString &loss)
{
    if (endedWell(facts, question)) {
        return std::nullopt;
    }
    const auto &answered = facts.answer(question);
    if (!answered) {
        return warning("not checked: the tool is missing", "see the line about the tool");
    }
    const QString command
        = (QStringList{answered->command.tool} + answered->command.arguments).join(' ');
    return error(QString("\"%1\" %2").arg(command, fateOf(answered->answer, facts.limit)),
                 QString("run it by hand and fix it; until then %1").arg(loss));
}

std::optional<Finding> badDisplayAnswer(const Facts &facts, Question question, const QString &loss)
{
    const auto &answered = facts.answer(question);
    const bool ended = answered && answered->answer.end == ToolResult::End::Ended;
    if (ended
        && !displayAnswers(facts)) { // the missing display is the reason, and is reported once
        return warning("not checked: no display answers", "see the line about the display");
    }
    return badAnswer(facts, question, loss);
}

bool displayAnswers(const Facts &facts)
{
    return endedWell(facts, Question::Server) || endedWell(facts, Question::Outputs)
        || endedWell(facts, Question::Devices);
}

QString answerText(const Facts &facts, Question question)
{
    const auto &answered = facts.answer(question);
    return answered ? QString::fromLocal8Bit(answered->answer.output) : QString();
}

std::optional<QSize> screenSize(const Facts &facts)
{
    static const QRegularExpression current("current ([0-9]{1,6}) x ([0-9]{1,6})");
    const auto found = current.match(answerText(facts, Question::Outputs));
    return found.hasMatch()
        ? std::optional(QSize(found.captured(1).toInt(), found.captured(2).toInt()))
        : std::nullopt;
}

QString folderOf(const char *path)
{
    return QFileInfo(QLatin1String(path)).path();
}

QString shortened(const QString &text)
{
    const QString line = text.left(10 * longestExcerpt).simplified();
    return line.size() <= longestExcerpt ? line : line.left(longestExcerpt - 3) + "...";
}
} // namespace Doctor
