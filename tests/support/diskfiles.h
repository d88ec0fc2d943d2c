#pragma once

#include <QByteArray>
#include <QString>

// Files anywhere in the simulated panel. Names may be any bytes. Outside the simulated panel these
// functions end the test program.

/// Writes the file at @p path anew. Creates its folders.
void writeFile(const QByteArray &path, const QByteArray &content = {});

/// Content of the file at @p path; "none" if it cannot be read.
QByteArray readFile(const QByteArray &path);

/// Removes everything in the folder at @p path. Creates the folder if it is missing.
void emptyFolder(const QByteArray &path);

/// Runs a shell command line. Result: its standard output. The test program ends if it fails.
QByteArray shellBytes(const QString &commands);
