#include "report.h"

#include "common/report.h"
#include "options.h"
#include "system/debugtext.h"
#include "system/run/toollimits.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace MkPackage {
namespace {
constexpr ToolReport::Layout layout{8, "text"};

QByteArray counted(int count, const char *what)
{
    return QByteArray::number(count) + ' ' + what + (count == 1 ? "" : "s");
}

QByteArray verdictText(const Findings &findings)
{
    const int errors = findings.count(Level::Error);
    const int warnings = findings.count(Level::Warning);
    QByteArrayList counts;
    if (errors > 0) {
        counts += counted(errors, "error");
    }
    if (warnings > 0) {
        counts += counted(warnings, "warning");
    }
    const QByteArray verdict
        = errors > 0 ? "bad: do not put it on a stick" : "good: it may go on a stick";
    return verdict + (counts.isEmpty() ? QByteArray() : " (" + counts.join(", ") + ')') + '\n';
}

QString json(const QByteArray &text)
{
    return QString::fromLatin1(text);
}

QJsonValue headerObject(const std::optional<PackageHeader> &header)
{
    if (!header) {
        return QJsonValue::Null;
    }
    const QString kind = kindName(header->kind);
    return QJsonObject{
        {"kind", kind.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(kind)},
        {"kindNumber", qint64(header->kind)},
        {"version", qint64(header->version)},
        {"target", json(printable(header->target))},
    };
}

} // namespace

bool isGood(const Verification &verification)
{
    return verification.findings.count(Level::Error) == 0;
}

QByteArray findingsText(const Verification &verification)
{
    return ToolReport::findingLines(verification.findings.list(), layout);
}

QByteArray textReport(const Verification &verification)
{
    return findingsText(verification) + verdictText(verification.findings);
}

QJsonObject reportObject(const Verification &verification, const VerifyTask &task,
                         const QString &path)
{
    return {
        {"file", json(printable(path))},
        {"good", isGood(verification)},
        {"errors", verification.findings.count(Level::Error)},
        {"warnings", verification.findings.count(Level::Warning)},
        {"header", headerObject(verification.header)},
        {"packedBytes", verification.packedSize},
        {"unpackedBytes", verification.unpackedSize},
        {"entries", verification.count},
        {"seconds", verification.seconds},
        {"limitSeconds", std::chrono::duration<double>(unpackLimit).count()},
        {"megabytesPerSecond", task.rate},
        {"findings", ToolReport::findingArray(verification.findings.list(), layout)},
    };
}

QByteArray jsonReport(const Verification &verification, const VerifyTask &task, const QString &path)
{
    return QJsonDocument(reportObject(verification, task, path)).toJson(QJsonDocument::Compact)
        + '\n';
}
} // namespace MkPackage
