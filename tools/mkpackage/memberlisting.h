#pragma once

#include "tarreader.h"

#include <QByteArray>

namespace MkPackage {
/// Lists the members of an archive, one line each, as GNU tar does with the options --list
/// --verbose --numeric-owner --quoting-style=escape. Times are in UTC.
class MemberListing
{
public:
    void add(const TarMember &member);

    /// The lines so far, in printable ASCII.
    QByteArray text() const { return m_text; }

private:
    QByteArray m_text;
    qsizetype m_ownerWidth = 19; ///< characters of owner and size; grows with the widest so far
};

/// @p name as tar shows it: control characters, backslashes and bytes outside ASCII are escaped as
/// in C.
QByteArray escapedName(const QByteArray &name);
} // namespace MkPackage
