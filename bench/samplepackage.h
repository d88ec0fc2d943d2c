#pragma once

#include <QString>

/// Makes an application package for this panel at @p path whose files are @p mebibytes MiB. Half
/// of them are bytes that no compression makes smaller, as pictures are, the others lines of text
/// that are like each other, as tag lists are. Ends the benchmark if that fails.
void makeSamplePackage(const QString &path, int mebibytes);
