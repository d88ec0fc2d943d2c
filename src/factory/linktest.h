#pragma once

#include <QString>

#include <optional>

// The payloads and verdicts of the serial and Ethernet tests. Nothing here opens a port.

/// Characters sent by both tests, each once.
inline constexpr char linkTestCharacters[]
    = "1234567890abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

/// Line between the echo and the verdict.
inline constexpr char verdictRule[] = "--------------------------------------";

/// Where the echo peer of the Ethernet test listens.
struct PeerAddress
{
    QString host; ///< name or IPv4 address
    quint16 port; ///< 0 if no valid port was given; connecting to it fails
};

/// Parses "host:port"; both may have blanks around them. Text after a second ":" is ignored, so an
/// IPv6 address cannot be used.
/// Result: nothing if there is no ":" or no host. The port is 0 unless it is a decimal number up
/// to 65535.
std::optional<PeerAddress> parsePeerAddress(const QString &text);

/// The number before the "-" in the name of a test, such as "2-232"; 0 if there is none.
int linkNumber(const QString &testName);

/// The text that the serial test sends to @p device, for example "/dev/ttyS0".
QString serialPayload(const QString &device, const QString &characters);

/// The text that the test of Ethernet port @p number sends. Ports are counted from 1.
QString etherPayload(int number, const QString &characters);

/// The verdict on the echo, translated: "Test Ok!" if @p received equals @p expected, otherwise
/// "Test Fail!".
QString linkVerdict(const QString &received, const QString &expected);
