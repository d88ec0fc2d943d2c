#pragma once

#include <QByteArray>
#include <QString>

// Files anywhere in the simulated panel, whatever bytes their names are made of; elsewhere the
// test program ends.

/// Makes @p content the whole content of the file at @p path, and the folders that it lies in.
void writeFile(const QByteArray &path, const QByteArray &content = {});

/// Content of the file at @p path; "none" if it cannot be read.
QByteArray readFile(const QByteArray &path);

/// Removes all that is below the folder at @p path, which is made if it is missing.
void emptyFolder(const QByteArray &path);

/// Runs a shell's command line. Result: what it writes to standard output. The test program ends
/// if it fails.
QByteArray shellBytes(const QString &commands);
