#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>

/// The examples of the manual page at @p path, a path in the source tree, each as a reader sees it
/// and with a line end.
QByteArrayList examplesOfManualPage(const QByteArray &path);

/// Shell text that runs @p example where @p program is installed.
QString withProgram(const QString &program, const QByteArray &example);
