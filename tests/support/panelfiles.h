#pragma once

#include <QByteArray>
#include <QString>

// Files in /opt/talmero/bios of the simulated panel. Elsewhere these functions end the test
// program.

/// Writes the file @p name anew.
void writePanelFile(const QString &name, const QByteArray &content);

/// Content of the file @p name; empty if there is none.
QByteArray readPanelFile(const QString &name);

/// Removes the file or the empty folder @p name, if it exists.
void removePanelFile(const QString &name);

/// Puts an empty folder in place of the file @p name.
void putFolderAtPanelFile(const QString &name);
