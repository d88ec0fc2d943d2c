#pragma once

#include <QString>

/// Makes an application package for this panel at @p path, with files of @p mebibytes MiB. Half of
/// the files are incompressible, like pictures. The others are similar lines of text, like tag
/// lists. Exits the benchmark on failure.
void makeSamplePackage(const QString &path, int mebibytes);
