#pragma once

class QFile;
class QString;

/// Opens the plain file at @p path for reading as @p file. Its name may contain any bytes, see
/// textFromBytes(). Never blocks, not even on a named pipe.
/// Result: false if it cannot be opened or is not a plain file.
bool openPlainFile(QFile &file, const QString &path);

/// Copies the rest of @p from to @p to. A read error counts as the end of the file; the caller
/// can detect it with from.error().
/// Result: false if @p to could not be written completely.
bool copyRest(QFile &from, QFile &to);

/// Copies the file at @p from to @p to, with its permissions. An existing file is not replaced.
/// Result: false on failure; then nothing is created at @p to.
bool copyToNewFile(const QString &from, const QString &to);
