#include "outcome.h"

#include "packages/packagecheck.h"
#include "packages/packagerefusal.h"
#include "packages/packagetypes.h"

#include <algorithm>

namespace Install {
namespace {
constexpr char busyText[] = "another program is installing a package";

struct Row
{
    Page page;
    int result;
    ExitStatus status;
    const char *text; ///< null: the page has words of its own
};

// clang-format off
constexpr Row rows[] = {
    {Page::FileTransfer, Installed,         Done,          "installed"},
    {Page::FileTransfer, OpenFileError,     CannotOpen,    nullptr},
    {Page::FileTransfer, WrongVersion,      OtherRuntime,  nullptr},
    {Page::FileTransfer, WrongModel,        OtherModel,    nullptr},
    {Page::FileTransfer, WrongFirmwareOem,  OtherOem,      nullptr},
    {Page::FileTransfer, InstallerBusy,     Busy,          busyText},
    {Page::BiosUpdate,   BiosInstalled,     Done,          "installed"},
    {Page::BiosUpdate,   NoBiosImage,       NoBiosPackage, "not a bios package"},
    {Page::BiosUpdate,   BiosNotNewer,      NotNewer,      "not newer than the installed bios"},
    {Page::BiosUpdate,   BiosNotStored,     CannotStore,   "no room for the archive"},
    {Page::BiosUpdate,   BiosInstallerBusy, Busy,          busyText},
};
// clang-format on

QString wordsOfThePage(int result)
{
    const PackageRefusal *refusal = findPackageRefusal(result);
    return QString("%1: %2").arg(QLatin1String(refusal->title), QLatin1String(refusal->text));
}
} // namespace

std::optional<Page> pageFor(const QString &name)
{
    if (isListedAs(PackageKind::Application, name) || isListedAs(PackageKind::Firmware, name)) {
        return Page::FileTransfer;
    }
    return isListedAs(PackageKind::BiosImage, name) ? std::optional(Page::BiosUpdate)
                                                    : std::nullopt;
}

bool isUnknownKind(Page page, const PackageHeader &header)
{
    return page == Page::FileTransfer && header.kind != PackageKind::Application
        && header.kind != PackageKind::Firmware;
}

Outcome outcomeOf(Page page, int result)
{
    const Row *found
        = std::find_if(std::begin(rows), std::end(rows), [page, result](const Row &row) {
              return row.page == page && row.result == result;
          });
    return {found->status,
            found->text != nullptr ? QString(QLatin1String(found->text)) : wordsOfThePage(result)};
}

Outcome unknownKind()
{
    return {UnknownKind, "neither an application nor a firmware"};
}
} // namespace Install
