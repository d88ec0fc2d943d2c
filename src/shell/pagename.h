#pragma once

#include <QString>

/// Object name of the button that opens the page with the index @p page: "label:page".
QString pageButtonName(const QString &label, int page);

/// The page index in such a name: the number between the first and the second ":". 0 if there is
/// no ":" or no number.
int pageIndexFromName(const QString &name);
