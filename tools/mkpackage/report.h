#pragma once

#include "verify.h"

namespace MkPackage {
/// Whether a package may go on a stick: warnings do not count.
bool isGood(const Verification &verification);

/// One line for each finding, and one with the verdict, for a person.
QByteArray textReport(const Verification &verification);

/// The same of the file @p path for a program: one JSON object and a line end.
QByteArray jsonReport(const Verification &verification, const VerifyTask &task,
                      const QString &path);
} // namespace MkPackage
