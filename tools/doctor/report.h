#pragma once

#include "finding.h"

namespace Doctor {
/// The exit status for @p findings: 0 if all are ok, 1 if there are only warnings, 2 if there are
/// errors.
int statusOf(const Findings &findings);

/// One line per finding, in printable ASCII.
QByteArray textReport(const Findings &findings);

/// The same as one JSON object.
QByteArray jsonReport(const Findings &findings);
} // namespace Doctor
