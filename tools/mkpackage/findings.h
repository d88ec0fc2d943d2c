#pragma once

#include "common/finding.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

namespace MkPackage {
/// What verifying looks at, in the order of the report.
enum class Check { Header, Gzip, Tar, Names, Links, Rights, Size, Time, Panel };

using ToolReport::Finding;
using ToolReport::Level;

/// What has been found in a package. Of findings of the same check and level it keeps the first
/// ones and the number of the rest: a package may have a million of them.
class Findings
{
public:
    /// An Ok is dropped if the same check has found something.
    void add(Check check, Level level, const QString &text);

    bool has(Check check, Level level) const { return count(check, level) > 0; }
    int count(Level level) const;

    /// Sorted by their checks. A last one of each sort tells how many more there are.
    QList<Finding> list() const;

private:
    struct Group
    {
        QStringList texts;
        int count = 0;
    };

    int count(Check check, Level level) const { return m_groups.value({check, level}).count; }

    QMap<QPair<Check, Level>, Group> m_groups;
};

/// The name of a member for a line of text, in printable ASCII and of bounded length.
QString shownName(const QByteArray &name);
} // namespace MkPackage
