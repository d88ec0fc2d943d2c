#include "findings.h"

#include "system/debugtext.h"
#include "system/textcodec.h"

namespace {
constexpr int keptCount = 3;        // findings of one sort, more tell a person nothing new
constexpr qsizetype shownSize = 60; // characters of a name

constexpr const char *checkNames[]
    = {"header", "gzip", "tar", "names", "links", "rights", "size", "time", "panel"};
constexpr const char *levelNames[] = {"ok", "warning", "error"};
} // namespace

QByteArray checkName(Check check)
{
    return checkNames[int(check)];
}

QByteArray levelName(Level level)
{
    return levelNames[int(level)];
}

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

QList<PackageFinding> Findings::list() const
{
    QList<PackageFinding> findings;
    for (auto group = m_groups.begin(); group != m_groups.end(); ++group) {
        const auto [check, level] = group.key();
        if (level == Level::Ok && (has(check, Level::Warning) || has(check, Level::Error))) {
            continue;
        }
        for (const QString &text : group->texts) {
            findings += {check, level, text};
        }
        if (group->count > group->texts.size()) {
            findings
                += {check, level, QString("and %1 more").arg(group->count - group->texts.size())};
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
