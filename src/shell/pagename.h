#pragma once

#include <QString>

/// Returns "label:page", the object name of the button that opens the page with index @p page.
QString pageButtonName(const QString &label, int page);

/// Returns the page index in such a name: the number between the first and the second ":".
/// Returns 0 if there is no ":" or no number.
int pageIndexFromName(const QString &name);
