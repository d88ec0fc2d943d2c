#include "report.h"

#include "finding.h"
#include "system/debugtext.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {
constexpr const char *levelNames[] = {"ok", "warning", "error"};
constexpr int levelWidth = 9; // of the longest name, and two blanks

const char *nameOf(Level level)
{
    return levelNames[size_t(level)];
}

QString shown(const QString &text)
{
    return QString::fromLatin1(printable(text));
}
} // namespace

int statusOf(const Findings &findings)
{
    int status = 0;
    for (const Finding &finding : findings) {
        status = std::max(status, int(finding.level));
    }
    return status;
}

QByteArray textReport(const Findings &findings)
{
    QByteArray text;
    for (const Finding &finding : findings) {
        text += QByteArray(nameOf(finding.level)).leftJustified(levelWidth)
            + printable(finding.subject) + ": " + printable(finding.found);
        if (!finding.advice.isEmpty()) {
            text += " -> " + printable(finding.advice);
        }
        text += '\n';
    }
    return text;
}

QByteArray jsonReport(const Findings &findings)
{
    QJsonArray list;
    for (const Finding &finding : findings) {
        QJsonObject object{{"level", nameOf(finding.level)},
                           {"check", shown(finding.subject)},
                           {"found", shown(finding.found)}};
        if (!finding.advice.isEmpty()) {
            object.insert("advice", shown(finding.advice));
        }
        list += object;
    }
    return QJsonDocument(QJsonObject{{"status", statusOf(findings)}, {"findings", list}}).toJson();
}
