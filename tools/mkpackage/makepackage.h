#pragma once

#include "options.h"

namespace MkPackage {
/// Makes the package that @p options ask for: the header, and behind it what is in the folder as a
/// gzip-compressed tar archive. The same contents give the same bytes: members are sorted, belong
/// to root and have the time @p time, in seconds since 1970; the folder itself is no member, so
/// that unpacking leaves the panel's folder as it is. The file appears whole or not at all; an
/// older one stays if anything fails. @p shallStop is asked now and then whether to give up.
/// Result: what went wrong, in one line; empty if the package was made.
QString makePackage(const Options &options, qint64 time, bool (*shallStop)());
} // namespace MkPackage
