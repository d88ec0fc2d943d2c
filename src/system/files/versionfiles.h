#pragma once

#include <QString>
#include <QStringList>

// One-line files that record what is installed on the panel.

/// Version number of the installed HMI runtime as written in its file; empty if there is none.
QString getCurrentRuntimeVersion();

/// OEM name of the installed HMI runtime; empty if there is none.
QString getCurrentRuntimOEM();

/// Version number of this settings program; empty if there is none.
QString getCurrentBIOSVersion();

/// Names of the panel's model: the model name, then its short code if it has one. The name is empty
/// if there is no model file. Compare whole entries, case-sensitively.
QStringList getCurrentRuntimeModel();

// The setters write the value without a line end. They do nothing if the file cannot be opened.

void setCurrentRuntimeVersion(int version);
void setCurrentBIOSVersion(int version);
void setCurrentRuntimeModel(const QString &model);
void setCurrentRuntimeOEM(const QString &oem);

/// First line of the file at @p path without its line end; empty if it cannot be read.
QString firstLineOfFile(const QString &path);

/// First line of @p text without its line end.
QString firstLineOf(const QByteArray &text);

/// Replaces the content of the file at @p path with @p text. Does nothing if it cannot be opened.
void writeTextFile(const QString &path, const QString &text);

/// @p model, followed by its short code if it has one.
QStringList modelNames(const QString &model);
