#pragma once

#include "finding.h"

namespace Doctor {
/// The tool's exit status for wrong usage and for output that is lost, see sysexits.h(3head).
enum ExitStatus : int { WrongUsage = 64, OutputLost = 74 };

/// The worst of @p findings as exit status: 0 all ok, 1 warnings only, 2 errors.
int statusOf(const Findings &findings);

/// One line per finding, in ASCII that no terminal misreads.
QByteArray textReport(const Findings &findings);

/// The same as one JSON object.
QByteArray jsonReport(const Findings &findings);
} // namespace Doctor
