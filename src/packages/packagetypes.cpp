#include "packages/packagetypes.h"

#include <algorithm>
#include <iterator>

namespace {
constexpr bool typesAreInOrder()
{
    for (int row = 0; row < int(std::size(packageTypes)); ++row) {
        if (int(packageTypes[row].type) != row) {
            return false;
        }
    }
    return true;
}
static_assert(typesAreInOrder());
} // namespace

bool isListedAs(PackageType type, const QString &name)
{
    const bool anyCase = packageTypeInfo(type).extensionCase == ExtensionCase::AnyCase;
    return name.endsWith(packageExtension(type), anyCase ? Qt::CaseInsensitive : Qt::CaseSensitive);
}

bool isListedAs(PackageKind kind, const QString &name)
{
    return std::any_of(std::begin(packageTypes), std::end(packageTypes),
                       [kind, &name](const PackageTypeInfo &info) {
                           return info.kind == kind && isListedAs(info.type, name);
                       });
}

QString packageExtension(PackageType type)
{
    return QLatin1String(packageTypeInfo(type).extension);
}

QStringList packageExtensions(PackageKind kind)
{
    QStringList extensions;
    for (const PackageTypeInfo &info : packageTypes) {
        if (info.kind == kind) {
            extensions += packageExtension(info.type);
        }
    }
    return extensions;
}

QStringList findPackagesBelow(const QString &folder, PackageType type)
{
    return findFilesBelow(folder, {packageExtension(type)}, packageTypeInfo(type).extensionCase);
}
