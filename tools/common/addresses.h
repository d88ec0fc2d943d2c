#pragma once

class QString;

namespace ToolReport {
/// Whether @p text is an IPv4 address in four decimal numbers.
bool isAddress(const QString &text);

/// Whether @p text is the netmask of an IPv4 network, such as "255.255.255.0".
bool isMask(const QString &text);
} // namespace ToolReport
