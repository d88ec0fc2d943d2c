#include "findings.h"

#include "system/debugtext.h"
#include "system/textcodec.h"

namespace MkPackage {
namespace {
constexpr int keptCount = 3;        // findings per check and level; more tell a person nothing new
constexpr qsizetype shownSize = 60; // characters of a name

constexpr const char *checkNames[]
    = {"header", "gzip", "tar", "names", "links", "rights", "size", "time", "panel"};
} // namespace

void Findings::add(Check check, Level level, const QString &text)
{
    Group &group = m_groups[{check, level}];
    ++group.count;
    if (group.texts.size() < keptCount) {
        group.texts += text;
    }
}

int Findings::count(Level level) const
{
    int sum = 0;
    for (auto group = m_groups.begin(); group != m_groups.end(); ++group) {
        sum += group.key().second == level ? group->count : 0;
    }
    return sum;
}

QList<Finding> Findings::list() const
{
    QList<Finding> findings;
    for (auto group = m_groups.begin(); group != m_groups.end(); ++group) {
        const auto [check, level] = group.key();
        if (level == Level::Ok && (has(check, Level::Warning) || has(check, Level::Error))) {
            continue;
        }
        const QString subject = QLatin1String(checkNames[int(check)]);
        for (const QString &text : group->texts) {
            findings += {level, text, {}, subject};
        }
        if (const auto more = group->count - group->texts.size(); more > 0) {
            findings += {level, QString("and %1 more").arg(more), {}, subject};
        }
    }
    return findings;
}

QString shownName(const QByteArray &name)
{
    const QByteArray shown = printable(textFromBytes(name.left(shownSize)));
    const bool isCut = name.size() > shownSize || shown.size() > shownSize;
    return QString::fromLatin1(shown.left(shownSize)) + QLatin1String(isCut ? "..." : "");
}
} // namespace MkPackage
