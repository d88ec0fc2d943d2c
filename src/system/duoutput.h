#pragma once

#include <QString>

/// The total in what "du -h FOLDER" prints: lines of a size, a tab and a path, the last of them
/// for the folder itself. Result: its size, for example "12M"; empty if there is no whole line.
QString diskUsageTotal(const QString &duOutput);
