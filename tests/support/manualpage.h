#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>

/// The examples in the manual page at @p path, relative to the source tree. Each is the text
/// that a reader sees, with a line end.
QByteArrayList examplesOfManualPage(const QByteArray &path);

/// Shell text that runs @p example as if @p program were installed.
QString withProgram(const QString &program, const QByteArray &example);
