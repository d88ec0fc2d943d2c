#pragma once

#include "packages/packageheader.h"

#include <QString>

#include <sysexits.h>

#include <optional>

// What becomes of a package that is installed from the command line.

namespace Install {
/// Exit status of talmero-install.
enum ExitStatus : int {
    Done = 0,           ///< installed, or would be
    CannotOpen = 1,     ///< the package cannot be read or stored
    OtherRuntime = 2,   ///< an application for another version of the runtime
    OtherModel = 3,     ///< an application for another panel model
    OtherOem = 4,       ///< a firmware for another OEM
    NoBiosPackage = 5,  ///< of another kind, or shorter than a header
    NotNewer = 6,       ///< the installed BIOS has this version or a higher one
    CannotStore = 7,    ///< no room for the archive of a BIOS package
    UnknownKind = 8,    ///< a kind of which nothing is installed
    Harmful = 9,        ///< would be installed, and do harm; only without installing
    Busy = EX_TEMPFAIL, ///< another program is installing a package
    NoRoot = EX_NOPERM,
};

/// The page or dialog of the settings program that lists a package.
enum class Page { FileTransfer, BiosUpdate };

/// What became of a package.
struct Outcome
{
    ExitStatus status;
    QString text; ///< for a person; in the words of the page, if it has any
};

/// The page that lists the file @p name; nothing if none does.
std::optional<Page> pageFor(const QString &name);

/// Whether @p page installs nothing of the header's kind, says nothing and keeps a copy of the
/// archive.
bool isUnknownKind(Page page, const PackageHeader &header);

/// The outcome of @p result, an InstallResult or a BiosInstallResult.
Outcome outcomeOf(Page page, int result);

/// The outcome of a package of an unknown kind.
Outcome unknownKind();
} // namespace Install
