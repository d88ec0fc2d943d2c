#pragma once

#include "common/finding.h"

#include <QByteArray>
#include <QJsonArray>
#include <QList>

namespace ToolReport {
/// How a tool lays out its findings.
struct Layout
{
    int subjectWidth;       ///< characters of the column of subjects; 0: a colon ends each of them
    const char *textMember; ///< name of the JSON member that holds the text
};

/// The word for @p level in reports: "ok", "warning" or "error".
QByteArray levelName(Level level);

/// One line per finding, for a person. All texts must be printable ASCII.
QByteArray findingLines(const QList<Finding> &findings, const Layout &layout);

/// One object per finding, for a program: level, check (the subject), the text and, if there is
/// one, the advice. All texts must be printable ASCII.
QJsonArray findingArray(const QList<Finding> &findings, const Layout &layout);
} // namespace ToolReport
