#include "panelcheck.h"

#include "options.h"
#include "packages/packagecheck.h"
#include "packages/packagerefusal.h"
#include "packages/packagetypes.h"
#include "system/debugtext.h"
#include "system/files/versionfiles.h"
#include "system/textcodec.h"
#include "zerobytes.h"

#include <algorithm>

namespace MkPackage {
namespace {
QString shown(const QString &text)
{
    return QString::fromLatin1(printable(text));
}

/// Whether the page that lists the file @p name installs in the folder of the settings program. If
/// no page lists it, the kind decides.
bool isForBiosFolder(const PackageHeader &header, const QString &name)
{
    const bool isTransferFile
        = isListedAs(PackageKind::Application, name) || isListedAs(PackageKind::Firmware, name);
    return isListedAs(PackageKind::BiosImage, name)
        || (header.kind == PackageKind::BiosImage && !isTransferFile);
}

/// What a header asks for, in words.
QString wishOf(const PackageHeader &header)
{
    switch (header.kind) {
    case PackageKind::Application:
        return QString("application for %1 with runtime version %2")
            .arg(shown(header.target))
            .arg(header.version);
    case PackageKind::Firmware:
        return QString("firmware version %1 for the OEM %2")
            .arg(header.version)
            .arg(shown(header.target));
    case PackageKind::BiosImage:
        return QString("bios version %1").arg(header.version);
    default:
        return QString("unknown kind %1").arg(quint32(header.kind));
    }
}

/// What the page shows after @p result.
QString refusalText(int result)
{
    const PackageRefusal *refusal = findPackageRefusal(result);
    return QString("refuses it and shows \"%1: %2\"")
        .arg(QLatin1String(refusal->title), QLatin1String(refusal->text));
}

QString unpackText(PackageType type)
{
    return QString("unpacks it in %1").arg(QLatin1String(packageTypeInfo(type).folder));
}

void checkTransfer(const PackageHeader &header, const PanelFacts &panel, Findings &findings)
{
    const QString version = QString::number(panel.runtimeVersion.value_or(header.version));
    const QStringList models = panel.model ? modelNames(*panel.model) : QStringList(header.target);
    const InstallResult result
        = checkPackage(header, {version, panel.oem.value_or(header.target), models});
    if (result != Installed) {
        findings.add(Check::Panel, Level::Error, refusalText(result));
    } else if (header.kind == PackageKind::Application) {
        findings.add(Check::Panel, Level::Ok, unpackText(PackageType::Application));
    } else if (header.kind == PackageKind::Firmware) {
        findings.add(Check::Panel, Level::Ok, unpackText(PackageType::Firmware));
    } else {
        findings.add(Check::Panel, Level::Error,
                     "installs nothing of this kind, says nothing and keeps a copy of the archive");
    }
}

void checkBios(const PackageHeader &header, const PanelFacts &panel, Findings &findings)
{
    const quint32 lowerVersion = std::max(header.version, 1U) - 1;
    const QString version = QString::number(panel.biosVersion.value_or(lowerVersion));
    switch (checkBiosPackage(header, version)) {
    case BiosInstalled:
        findings.add(Check::Panel, Level::Ok, unpackText(PackageType::BiosImage));
        break;
    case BiosNotNewer:
        findings.add(
            Check::Panel, Level::Error,
            QString("installs nothing and says nothing: it has bios version %1").arg(version));
        break;
    default:
        findings.add(Check::Panel, Level::Error,
                     "installs nothing and says nothing: this is no bios package");
    }
}
} // namespace

void checkHeader(const QByteArray &bytes, const PackageHeader &header, Findings &findings)
{
    const QByteArray target = fieldBytes(bytes, PackageFields::target);
    const qsizetype end = target.indexOf('\0');
    const bool isUsed = header.kind != PackageKind::BiosImage;
    const bool isKnown = !kindName(header.kind).isEmpty();
    findings.add(Check::Header, isKnown ? Level::Ok : Level::Error, wishOf(header));
    if (!isZero(fieldBytes(bytes, PackageFields::reserved))) {
        findings.add(Check::Header, Level::Warning, "the reserved bytes are not all zero");
    }
    if (end < 0) {
        findings.add(Check::Header, Level::Warning,
                     "the target does not end with a NUL byte: " + shown(header.target));
    } else if (!isZero(target.mid(end))) {
        findings.add(Check::Header, Level::Warning, "there are bytes after the end of the target");
    }
    if (isUsed && isKnown && header.target.isEmpty()) {
        findings.add(Check::Header, Level::Warning,
                     "the target is empty: only a panel that was never set up accepts it");
    } else if (!isPrintableAscii(header.target)) {
        findings.add(Check::Header, Level::Warning,
                     "the target is not printable ASCII: " + shown(header.target));
    }
}

void checkPanel(const PackageHeader &header, const QString &name, const PanelFacts &panel,
                Findings &findings)
{
    const bool isKnown = !kindName(header.kind).isEmpty();
    for (const QString &warning : isKnown ? warningsFor(header, name) : QStringList()) {
        findings.add(Check::Panel, Level::Warning, warning);
    }
    isForBiosFolder(header, name) ? checkBios(header, panel, findings)
                                  : checkTransfer(header, panel, findings);
}

void checkShortFile(qint64 size, const QString &name, Findings &findings)
{
    findings.add(Check::Header, Level::Error,
                 QString("%1 bytes: a package has at least %2").arg(size).arg(packageHeaderSize));
    findings.add(Check::Panel, Level::Error,
                 isListedAs(PackageKind::BiosImage, name) ? "installs nothing and says nothing"
                                                          : refusalText(OpenFileError));
}
} // namespace MkPackage
