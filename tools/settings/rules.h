#pragma once

#include <QString>

// What may be stored in the settings file from the command line.

namespace Settings {
/// Why @p key with @p value would not be read back as it is: a line end, a "=" in the key, an empty
/// value, white space that the file's format changes. Empty if it would be.
QString formatError(const QString &key, const QString &value);

/// Why no page could have stored @p value for @p key. Empty if one could have. Addresses and
/// netmasks, which the Ethernet page stores as they are typed, must be real ones.
QString pageError(const QString &key, const QString &value);

/// Why no page could have removed @p key. Empty if one could have.
QString removalError(const QString &key);
} // namespace Settings
