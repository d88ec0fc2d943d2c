#pragma once

#include "verify.h"

#include <QJsonObject>

namespace MkPackage {
/// Whether a package may go on a stick. Warnings do not prevent it.
bool isGood(const Verification &verification);

/// One line for each finding.
QByteArray findingsText(const Verification &verification);

/// The same for a program, about the file @p path.
QJsonObject reportObject(const Verification &verification, const VerifyTask &task,
                         const QString &path);

/// One line for each finding and one with the verdict, for a person.
QByteArray textReport(const Verification &verification);

/// reportObject() and a line feed.
QByteArray jsonReport(const Verification &verification, const VerifyTask &task,
                      const QString &path);
} // namespace MkPackage
