#include "report.h"

#include "common/report.h"
#include "finding.h"
#include "system/debugtext.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace Doctor {
namespace {
constexpr ToolReport::Layout layout{0, "found"};

QString shown(const QString &text)
{
    return QString::fromLatin1(printable(text));
}

/// Texts may quote files and tools, which can contain anything.
Findings shown(Findings findings)
{
    for (Finding &finding : findings) {
        finding
            = {finding.level, shown(finding.text), shown(finding.advice), shown(finding.subject)};
    }
    return findings;
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
    return ToolReport::findingLines(shown(findings), layout);
}

QByteArray jsonReport(const Findings &findings)
{
    const QJsonArray array = ToolReport::findingArray(shown(findings), layout);
    return QJsonDocument(QJsonObject{{"status", statusOf(findings)}, {"findings", array}}).toJson();
}
} // namespace Doctor
