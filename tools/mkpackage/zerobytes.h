#pragma once

#include <QByteArrayView>

namespace MkPackage {
/// Whether all of @p bytes are zero; true if there are none. It compares each byte with the next
/// one, which runs at the speed of memory: archives that are made to fill a disk consist of zeros.
inline bool isZero(QByteArrayView bytes)
{
    return bytes.isEmpty() || (bytes.front() == '\0' && bytes.sliced(1) == bytes.chopped(1));
}
} // namespace MkPackage
