#include "packages/packagecheck.h"

#include <limits>

quint32 versionNumber(const QString &text)
{
    const qint64 number = text.toLongLong(); // 0 if not a number
    const bool fits = number >= std::numeric_limits<qint32>::min()
        && number <= std::numeric_limits<quint32>::max();
    return fits ? quint32(number) : 0;
}

InstallResult checkPackage(const PackageHeader &header, const InstalledVersions &installed)
{
    switch (header.kind) {
    case PackageKind::Application:
        if (header.version != versionNumber(installed.runtimeVersion)) {
            return WrongVersion;
        }
        return installed.models.contains(header.target) ? Installed : WrongModel;
    case PackageKind::Firmware:
        return header.target == installed.runtimeOem ? Installed : WrongFirmwareOem;
    default:
        return Installed;
    }
}

BiosInstallResult checkBiosPackage(const PackageHeader &header, const QString &biosVersion)
{
    if (header.kind != PackageKind::BiosImage) {
        return NoBiosImage;
    }
    return versionNumber(biosVersion) < header.version ? BiosInstalled : BiosNotNewer;
}
