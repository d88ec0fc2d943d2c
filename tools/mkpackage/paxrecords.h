#pragma once

#include <QByteArrayView>

namespace MkPackage {
/// Why the records of an extended tar header cannot be trusted; null if nothing is wrong. The
/// header describes the next member or, with @p forAll, all members that follow. Records that
/// readers understand differently are wrong, such as a name for all members.
const char *findPaxError(QByteArrayView records, bool forAll);
} // namespace MkPackage
