#pragma once

#include <QByteArrayView>

namespace MkPackage {
/// Why the records of an extended tar header, which describe the next member or with @p forAll
/// all that follow, are not to be trusted; null if nothing is wrong. What readers take for
/// different things is wrong, such as a name for all members.
const char *findPaxError(QByteArrayView records, bool forAll);
} // namespace MkPackage
