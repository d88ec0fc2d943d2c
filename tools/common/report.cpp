#include "common/report.h"

#include <QJsonObject>

namespace ToolReport {
namespace {
constexpr const char *levelNames[] = {"ok", "warning", "error"};
constexpr int levelWidth = 9; // characters of the longest name, and two blanks

QByteArray subjectText(const QString &subject, const Layout &layout)
{
    const QByteArray text = subject.toLatin1();
    return layout.subjectWidth > 0 ? text.leftJustified(layout.subjectWidth) : text + ": ";
}
} // namespace

QByteArray levelName(Level level)
{
    return levelNames[static_cast<int>(level)];
}

QByteArray findingLines(const QList<Finding> &findings, const Layout &layout)
{
    QByteArray lines;
    for (const Finding &finding : findings) {
        lines += levelName(finding.level).leftJustified(levelWidth)
            + subjectText(finding.subject, layout) + finding.text.toLatin1();
        if (!finding.advice.isEmpty()) {
            lines += " -> " + finding.advice.toLatin1();
        }
        lines += '\n';
    }
    return lines;
}

QJsonArray findingArray(const QList<Finding> &findings, const Layout &layout)
{
    QJsonArray array;
    for (const Finding &finding : findings) {
        QJsonObject object{{"level", QString::fromLatin1(levelName(finding.level))},
                           {"check", finding.subject},
                           {QLatin1String(layout.textMember), finding.text}};
        if (!finding.advice.isEmpty()) {
            object.insert("advice", finding.advice);
        }
        array += object;
    }
    return array;
}
} // namespace ToolReport
