#pragma once

#include <QByteArray>
#include <QString>

// Files in /opt/talmero/bios of the simulated panel; elsewhere the test program ends.

/// Makes @p content the whole content of the file @p name.
void writePanelFile(const QString &name, const QByteArray &content);

/// Content of the file @p name; empty if there is none.
QByteArray readPanelFile(const QString &name);

/// Removes the file or empty folder @p name, if there is one.
void removePanelFile(const QString &name);

/// Puts an empty folder where the file @p name would be.
void putFolderAtPanelFile(const QString &name);
