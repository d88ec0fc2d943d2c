#pragma once

class QFile;
class QString;

/// Opens the plain file at @p path for reading in @p file, whatever bytes its name is made of
/// (textFromBytes()). Never waits, as opening a named pipe would.
/// Result: false if it cannot be opened or is no plain file.
bool openPlainFile(QFile &file, const QString &path);

/// Copies what is left to read in @p from into @p to, up to the first read that fails: that is
/// taken for the end, and from.error() tells of it.
/// Result: false if @p to did not take it whole.
bool copyRest(QFile &from, QFile &to);

/// Copies the file at @p from to @p to, with its permissions. An existing file is not replaced.
/// Result: false if that failed; nothing is left at @p to then that was not there before.
bool copyToNewFile(const QString &from, const QString &to);
