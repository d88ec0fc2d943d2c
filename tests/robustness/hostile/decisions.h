#pragma once

#include <QByteArray>

/// What "verify" must report about a hostile package.
struct Decision
{
    const char *package; ///< file name without extension; a final "*" matches any rest
    const char *error;   ///< the check that must report an error; null if the package is good
    const char *why;
};

/// The first row that matches the package @p name; null if there is none.
const Decision *findDecision(const QByteArray &name);

/// The rows that findDecision() has never returned; empty if there are none.
QByteArray unusedDecisions();
