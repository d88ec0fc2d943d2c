#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

// Files and their copies on the disk.

namespace Guard {
/// Content of the plain file at @p path. Result: nothing if there is none, or if it is larger than
/// 1 MiB: no guarded file is nearly as large.
std::optional<QByteArray> contentOf(const QString &path);

/// Waits until the file at @p path and its entry in the folder are on the disk.
/// Result: false if that failed.
bool makeDurable(const QString &path);

/// Writes @p content to the file at @p path in one step and waits until it is on the disk. Creates
/// the folder. Unlike replaceFile(), never in place: the old file must survive a power cut.
/// Result: false on failure; the old file is then unchanged.
bool storeSafely(const QString &path, const QByteArray &content);

/// Name of the file in which recordActs() stores what the guard last did.
inline constexpr char actsName[] = "last-act";

/// Path of the last good copy of the file @p name.
QString copyPath(const QString &name);

/// Records in the guard's folder that ifupdown's file said the same as the settings, which only
/// the program sees to. Without that, a file with no port at all may be the maker's own.
void notePairing();

/// Whether notePairing() was ever called.
bool wasPaired();

/// Prints @p acts, one line each, for the journal, and stores them with the time as what the guard
/// last did. Does nothing without acts.
void recordActs(const QStringList &acts);

/// Prints one line for the journal.
void say(const QString &line);
} // namespace Guard
