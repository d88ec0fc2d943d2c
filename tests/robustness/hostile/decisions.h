#pragma once

#include <QByteArray>

/// What verifying shall say of a hostile package, decided by a person.
struct Decision
{
    const char *package; ///< file name without extension; with "*" at its end, all that start so
    const char *error;   ///< the check that must find an error; null if the package is good
    const char *why;
};

/// The first row for the package @p name; null if nobody has decided about it.
const Decision *findDecision(const QByteArray &name);

/// Rows for which no package has asked; empty if there are none.
QByteArray unusedDecisions();
