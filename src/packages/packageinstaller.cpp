#include "packages/packageinstaller.h"

#include "packages/installlock.h"
#include "packages/packagecheck.h"
#include "packages/packagetypes.h"
#include "system/files/filecopy.h"
#include "system/files/folderlisting.h"
#include "system/files/versionfiles.h"
#include "system/run/commandline.h"
#include "system/run/process.h"
#include "system/textcodec.h"

#include <QFile>
#include <QTemporaryFile>

#include <optional>

namespace {
/// The folder that is searched for a BIOS image after a firmware is unpacked. Its path is relative
/// and has an apostrophe on purpose: most panels have no such folder, so no image is found.
constexpr char biosImageFolder[] = "'home/dest";

/// A package file and the temporary file for its archive.
class Package
{
public:
    explicit Package(const QString &path)
    {
        openPlainFile(m_file, path); // readHeader() checks the result
        m_hasArchive = m_archive.open();
    }

    bool hasArchiveFile() const { return m_hasArchive; }

    std::optional<PackageHeader> readHeader()
    {
        return m_file.isOpen() ? parsePackageHeader(m_file.read(packageHeaderSize)) : std::nullopt;
    }

    /// Stores the archive in a file that outlives this object.
    /// Result: false if there is no room for it; the file is then removed with this object.
    bool storeArchive()
    {
        if (!copyRest(m_file, m_archive)) {
            return false;
        }
        m_archivePath = m_archive.fileName(); // gives the file its name on the disk
        m_archive.setAutoRemove(m_archivePath.isEmpty());
        m_file.close();
        m_archive.close();
        return !m_archivePath.isEmpty();
    }

    /// Unpacks the stored archive into the folder of @p type and removes it.
    void unpackAs(PackageType type, std::chrono::milliseconds limit) const
    {
        runInFolder(unpackCommand(m_archivePath), QLatin1String(packageTypeInfo(type).folder),
                    limit);
        QFile::remove(m_archivePath);
    }

private:
    QFile m_file;
    QTemporaryFile m_archive;
    bool m_hasArchive = false;
    QString m_archivePath;
};

/// Name of the first BIOS image that came with a firmware package; empty if there is none.
QString broughtBiosImage()
{
    FolderListing listing(biosImageFolder);
    while (const dirent *entry = listing.next()) {
        QString name = textFromBytes(entry->d_name);
        if (name.endsWith(packageExtension(PackageType::BiosImage))) { // only small letters
            return name;
        }
    }
    return {};
}

void installApplication(const Package &package, std::chrono::milliseconds limit)
{
    runAndWait(removeOldApplicationCommand());
    package.unpackAs(PackageType::Application, limit);
}

BiosInstallResult installBios(const QString &path, std::chrono::milliseconds limit)
{
    Package package(path);
    if (!package.hasArchiveFile()) {
        return BiosNotStored;
    }
    const auto header = package.readHeader();
    const BiosInstallResult refusal
        = header ? checkBiosPackage(*header, getCurrentBIOSVersion()) : NoBiosImage;
    if (refusal != BiosInstalled) {
        return refusal;
    }
    if (!package.storeArchive()) {
        return BiosNotStored;
    }
    package.unpackAs(PackageType::BiosImage, limit);
    return BiosInstalled;
}

InstallResult installFirmware(const Package &package, quint32 version,
                              std::chrono::milliseconds limit)
{
    runAndWait(removeOldFirmwareCommand());
    package.unpackAs(PackageType::Firmware, limit);
    runAndWait(syncCommand());
    const QString image = broughtBiosImage();
    if (image.isEmpty()) {
        setCurrentRuntimeVersion(int(version));
        return Installed;
    }
    // Leaves out the image's folder and ignores the result on purpose: it has always been so.
    installBios(image, limit);
    return OpenFileError;
}
} // namespace

int installPackage(const QString &path, std::chrono::milliseconds limit)
{
    const InstallLock lock;
    if (!lock.isHeld()) {
        return InstallerBusy;
    }
    Package package(path);
    if (!package.hasArchiveFile()) {
        return OpenFileError;
    }
    const auto header = package.readHeader();
    if (!header) {
        return OpenFileError;
    }
    const InstallResult refusal = checkPackage(
        *header, {getCurrentRuntimeVersion(), getCurrentRuntimOEM(), getCurrentRuntimeModel()});
    if (refusal != Installed) {
        return refusal;
    }
    if (!package.storeArchive()) {
        return OpenFileError;
    }
    if (header->kind == PackageKind::Firmware) {
        return installFirmware(package, header->version, limit);
    }
    if (header->kind == PackageKind::Application) {
        installApplication(package, limit);
    }
    return Installed;
}

int installBIOSPackage(const QString &path, std::chrono::milliseconds limit)
{
    const InstallLock lock;
    return lock.isHeld() ? installBios(path, limit) : BiosInstallerBusy;
}
