#pragma once

#include "common/finding.h"

#include <QList>

namespace Doctor {
using ToolReport::Finding;
using ToolReport::Level;

/// The findings of a check. A finding without a subject gets the subject of the check.
using Findings = QList<Finding>;

inline Finding fine(const QString &found)
{
    return {Level::Ok, found, {}, {}};
}

inline Finding warning(const QString &found, const QString &advice)
{
    return {Level::Warning, found, advice, {}};
}

inline Finding error(const QString &found, const QString &advice)
{
    return {Level::Error, found, advice, {}};
}

/// @p finding about @p subject.
inline Finding about(const QString &subject, Finding finding)
{
    finding.subject = subject;
    return finding;
}
} // namespace Doctor
