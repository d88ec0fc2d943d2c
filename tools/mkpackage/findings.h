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

/// Collects what is found in a package. For each check and level it keeps the first few findings
/// and counts the rest: a package may have a million of them.
class Findings
{
public:
    /// Adds a finding. list() leaves out an Ok if the same check has a warning or an error.
    void add(Check check, Level level, const QString &text);

    bool has(Check check, Level level) const { return count(check, level) > 0; }
    int count(Level level) const;

    /// The findings in the order of Check. Where some were not kept, a last one says how many.
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

/// The name of a member in printable ASCII, cut to 60 characters.
QString shownName(const QByteArray &name);
} // namespace MkPackage
