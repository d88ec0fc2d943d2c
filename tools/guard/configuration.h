#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QStringList>

namespace Guard {
/// The integrator's choices; the file may be missing.
inline constexpr char configurationFile[] = "/etc/talmero-guard.conf";

/// What the configuration file says.
struct Configuration
{
    QByteArrayList allowedLinks;  ///< links below /home/dest that stay, as absolute paths
    bool removesLinks = true;     ///< false: they are only reported
    qint64 reserve = 4096 * 1024; ///< space in reserve for settings, in bytes; 0 for none
    QStringList problems;         ///< lines that are not understood, one message each
};

/// Reads the lines of the configuration file @p text, which has the format of bios.ini. Lines that
/// are not understood change nothing.
Configuration parseConfiguration(const QByteArray &text);
} // namespace Guard
