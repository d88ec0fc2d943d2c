#pragma once

#include "options.h"

namespace MkPackage {
/// Makes the package that @p options describe: the header, followed by the contents of the folder
/// as a gzip-compressed tar archive. The same contents give the same bytes: members are sorted,
/// belong to root and have the time @p time, in seconds since 1970. The folder itself is not a
/// member, so unpacking does not change the owner or the permissions of the panel's folder. The
/// file appears whole or not at all; if anything fails, an older file stays. @p shallStop is called
/// regularly and says whether to give up. Result: what went wrong, in one line; empty if the
/// package was made.
QString makePackage(const Options &options, qint64 time, bool (*shallStop)());
} // namespace MkPackage
