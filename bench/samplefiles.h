#pragma once

#include "packages/packagetypes.h"

#include <QString>

#include <string>

/// The type of the sample packages.
inline constexpr PackageType sampleType = PackageType::Application;

/// Makes @p folder with @p files empty files, 500 per subfolder. Every @p filesToPackage-th one is
/// named as a package. Removes the previous contents.
void makeSampleFiles(const std::string &folder, int files, int filesToPackage);
