#pragma once

#include <QString>

#include <optional>

// What the tests of the serial and Ethernet ports send and expect back, without any port.

/// Characters sent by both tests, each once.
inline constexpr char linkTestCharacters[]
    = "1234567890abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

/// Stands between the echo and its verdict.
inline constexpr char verdictRule[] = "--------------------------------------";

/// Where the echo peer of the Ethernet test listens.
struct PeerAddress
{
    QString host; ///< name or IPv4 address
    quint16 port; ///< 0 if none was given; nobody answers there
};

/// Reads "host:port", blanks around either allowed. What comes after a second ":" is ignored, so
/// an IPv6 address cannot be used.
/// Result: nothing if there is no ":" or no host. The port is 0 unless it is a decimal number up
/// to 65535.
std::optional<PeerAddress> parsePeerAddress(const QString &text);

/// The number before the "-" in a test's name such as "2-232"; 0 if there is none.
int linkNumber(const QString &testName);

/// What the serial test of @p device, for example "/dev/ttyS0", sends.
QString serialPayload(const QString &device, const QString &characters);

/// What the test of Ethernet port @p number, from 1 on, sends.
QString etherPayload(int number, const QString &characters);

/// The verdict on what came back.
/// Result: "Test Ok!" if @p received is @p expected, otherwise "Test Fail!".
QString linkVerdict(const QString &received, const QString &expected);
