#pragma once

#include <QByteArray>
#include <QByteArrayList>

/// The examples of the manual page at @p path, a path in the source tree, each as a reader sees it
/// and with a line end.
QByteArrayList examplesOfManualPage(const QByteArray &path);
