#pragma once

#include "packages/filewalk.h"
#include "packages/packageheader.h"
#include "system/paths.h"

#include <QString>
#include <QStringList>

/// The types of package files. Two of them share the kind BiosImage and differ in the extension.
enum class PackageType {
    Application,
    Firmware,
    BiosImage,
    AddOn,
};

/// Properties of a type of package files.
struct PackageTypeInfo
{
    PackageType type;
    PackageKind kind;
    const char *extension;       ///< in small letters, with the dot
    ExtensionCase extensionCase; ///< how the page or dialog that lists it compares the extension
    const char *folder;          ///< the archive is unpacked here
};

/// Every type, in the order of PackageType.
// clang-format off
inline constexpr PackageTypeInfo packageTypes[] = {
    {PackageType::Application, PackageKind::Application, ".kpc", ExtensionCase::SmallLetters, Paths::applicationFolder},
    {PackageType::Firmware,    PackageKind::Firmware,    ".fmw", ExtensionCase::SmallLetters, Paths::firmwareFolder},
    {PackageType::BiosImage,   PackageKind::BiosImage,   ".mo",  ExtensionCase::AnyCase,      Paths::biosFolder},
    {PackageType::AddOn,       PackageKind::BiosImage,   ".pkg", ExtensionCase::AnyCase,      Paths::biosFolder},
};
// clang-format on

/// The row of @p type.
constexpr const PackageTypeInfo &packageTypeInfo(PackageType type)
{
    return packageTypes[static_cast<int>(type)];
}

/// Whether a panel lists the file @p name as a package of @p type. @p name may include folders.
/// Only the extension decides: the panel does not read a package until it installs it.
bool isListedAs(PackageType type, const QString &name);

/// The same for any type of the kind @p kind; false for an unknown kind.
bool isListedAs(PackageKind kind, const QString &name);

/// The extension of @p type as text.
QString packageExtension(PackageType type);

/// The extensions of all types of @p kind; none for an unknown kind.
QStringList packageExtensions(PackageKind kind);

/// Finds the packages of @p type below @p folder, as findFilesBelow() does.
QStringList findPackagesBelow(const QString &folder, PackageType type);
