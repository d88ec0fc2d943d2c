#pragma once

#include "packages/packagetypes.h"

#include <QString>

#include <string>

/// The type of the sample packages.
inline constexpr PackageType sampleType = PackageType::Application;

/// Makes the folder @p folder with @p files empty files, 500 to a folder in it. One in each
/// @p filesToPackage is a package by its name. What was there before is removed.
void makeSampleFiles(const std::string &folder, int files, int filesToPackage);
