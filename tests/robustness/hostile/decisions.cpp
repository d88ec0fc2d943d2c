#include "decisions.h"

#include <QByteArrayList>

#include <algorithm>
#include <array>

// A case without a row here fails the test: somebody has to say what its package is.

namespace {
constexpr const char *good = nullptr;

// clang-format off
constexpr Decision decisions[] = {
    {"header-36-bytes", "gzip", "a panel removes the old application and brings nothing"},
    {"header-37-bytes", "gzip", "the same"},
    {"header-*", "header", "shorter than a header: refused"},

    {"kind-firmware-named-as-application", good, "the page installs both kinds by either name"},
    {"kind-application-named-as-firmware", good, "the same"},
    {"kind-application-named-as-image", "panel", "refused"},
    {"kind-image-of-35-bytes", "panel", "refused"},
    {"kind-firmware-for-a-model", "panel", "refused: a model is no OEM"},
    {"kind-0x4", "panel", "a BIOS image that the page for applications finds: a copy stays"},
    {"kind-0x*", "header", "an unknown kind: a copy stays, nothing is installed"},

    {"version-application-*", "panel", "refused: another runtime's"},
    {"version-firmware-*", good, "a firmware may have any version"},
    {"version-image-0x0", "panel", "refused: older"},
    {"version-image-0x3", "panel", "refused: the same version"},
    {"version-image-*", good, "newer"},

    {"target-short-code", good, "the model's other name"},
    {"target-rest-behind-end", good, "nobody reads what stands behind the NUL byte"},
    {"target-*", "panel", "refused: another target's"},

    {"cut-*", "gzip", "half a package"},
    {"gzip-two-streams", good, "gzip data may be several streams in a row"},
    {"gzip-random-inside", "tar", "no archive"},
    {"gzip-nothing-inside", "tar", "no archive"},
    {"gzip-gzip-inside", "tar", "no archive"},
    {"gzip-no-tar-end", "tar", "an archive that may have been cut off before it was compressed"},
    {"gzip-bomb", "size", "fills the disk"},
    {"gzip-random-1", "gzip", "damaged"},
    {"gzip-random-100", "gzip", "damaged"},
    {"gzip-random-100000", "gzip", "damaged"},
    {"gzip-gzip-head-alone", "gzip", "damaged"},
    {"gzip-bzip2", "gzip", "nothing that a panel unpacks"},
    {"gzip-xz", "gzip", "the same"},
    {"gzip-zip", "gzip", "only some gzip programs unpack it"},
    {"gzip-plain-tar", "gzip", "nothing that a panel unpacks"},
    {"gzip-reserved-flags", "gzip", "damaged"},
    {"gzip-other-method", "gzip", "damaged"},
    {"gzip-wrong-checksum", "gzip", "damaged"},
    {"gzip-wrong-size", "gzip", "damaged"},
    {"gzip-rest-behind", "gzip", "damaged"},
    {"gzip-damaged-firmware", "gzip", "raises the version all the same"},
    {"gzip-damaged-image", "gzip", "damaged"},
    {"gzip-endless-file", "gzip", "zeros behind a header"},
    {"large-longer-than-30-s", "size", "fills the disk"},

    {"tar-wrong-checksum", "tar", "damaged"},
    {"tar-8-gigabytes-claimed", "size", "claims more than there is"},
    {"tar-pax-size", "size", "the same"},
    {"tar-sparse-terabyte", "tar", "slows down all that reads the folder"},
    {"tar-negative-size", "tar", "damaged"},
    {"tar-size-of-all-bits", "tar", "damaged"},
    {"tar-endless-long-name", "tar", "damaged"},
    {"tar-pax-of-garbage", "tar", "damaged"},
    {"tar-pax-in-another-charset", good, "says how its names are to be read, which are plain"},
    {"tar-unknown-type", "tar", "each tar makes something else of it"},
    {"tar-goes-on-from-another-disk", "tar", "half an archive"},
    {"tar-label", "tar", "an archive of nothing"},
    {"tar-folder-with-contents", "tar", "each tar goes on at another place"},
    {"tar-far-future", good, "an odd time harms nobody"},
    {"tar-before-all-time", good, "the same"},
    {"tar-owner-out-of-range", "tar", "an owner that no system has"},
    {"tar-same-member-1000-times", good, "a warning: the last one stays"},
    {"tar-100000-members", good, "a warning: it takes nearly all the time that there is"},

    {"tar-name-*", "names", "leads out"},
    {"tar-absolute", "names", "leads out"},
    {"tar-pax-name", "names", "leads out"},
    {"tar-pax-absolute", "names", "leads out"},
    {"tar-pax-sparse-name", "tar", "leads out, and is damaged besides"},
    {"tar-long-name", "names", "leads out"},

    {"tar-through-absolute-link", "links", "leads out"},
    {"tar-through-relative-link", "links", "leads out"},
    {"tar-through-link-in-a-folder", "links", "leads out"},
    {"tar-hard-link-through-absolute-link", "links", "leads out"},
    {"tar-hard-link-through-relative-link", "links", "leads out"},
    {"tar-written-through-file-link", "links", "leads out"},
    {"tar-hard-link-absolute", "links", "leads out"},
    {"tar-hard-link-relative", "links", "leads out"},
    {"tar-hard-link-to-itself", "links", "cannot be made"},
    {"tar-link-to-itself", "links", "a file behind it cannot be made"},
    {"tar-links-in-a-ring", "links", "a file behind it cannot be made"},
    {"tar-link-to-nothing", "links", "cannot be made"},
    {"tar-100-links-in-a-chain", good, "warnings: all of them stay inside"},

    {"tar-mode-4755", "rights", "a root shell for whoever finds it"},
    {"tar-mode-2755", "rights", "the same for the group"},
    {"tar-mode-6755", "rights", "the same for both"},
    {"tar-rights-of-the-target", "rights", "takes the folder from the panel"},
    {"tar-sticky-folder", good, "as /tmp is"},
    {"tar-no-rights", good, "a warning: root reads it all the same"},
    {"tar-folder-without-rights", good, "a warning: the same"},
    {"tar-foreign-owner", good, "a warning: any archive of an ordinary user has one"},
    {"tar-pipe", "rights", "hangs who reads it"},
    {"tar-device-0-0", "rights", "a device"},
    {"tar-memory-device", "rights", "a device"},
    {"tar-disk-device", "rights", "a device"},

    {"planted-pipe-1", "rights", "hangs who reads it"},
    {"planted-hard-link-2", "links", "a hard link to what only an earlier package can have left"},
    {"planted-set-user-id-2", "rights", "a root shell"},
    // What lies behind a link that is there already, no package shows by itself.
    {"planted-file-2", good, "a file in a folder, as far as this package goes"},
    {"planted-over-the-guard-2", good, "the same"},
    {"planted-mode-of-a-folder-2", good, "a warning: anyone may write a folder"},
    {"planted-target-itself-2", good, "a file"},
    {"planted-folder-first-2", good, "a folder takes the link's place"},
    {"planted-file-instead-2", good, "a file takes the link's place"},
    {"planted-file-link-2", good, "the same"},
    {"planted-application-folder-2", good, "the same"},
    {"planted-pipe-2", good, "a file takes the pipe's place"},
    {"planted-file-1", "links", "leads out"},
    {"planted-over-the-guard-1", "links", "leads out"},
    {"planted-hard-link-1", "links", "leads out"},
    {"planted-set-user-id-1", "links", "leads out"},
    {"planted-mode-of-a-folder-1", "links", "leads out"},
    {"planted-target-itself-1", "links", "leads out"},
    {"planted-folder-first-1", "links", "leads out"},
    {"planted-file-instead-1", "links", "leads out"},
    {"planted-file-link-1", "links", "leads out"},
    {"planted-application-folder-1", "links", "leads out"},

    {"name-255-bytes", good, "as long as a name may be"},
    {"name-line-feed", good, "a warning: the panel unpacks it"},
    {"name-no-utf-8", good, "the same"},
    {"name-escape", good, "the same"},
    {"name-carriage-return", good, "the same"},
    {"name-right-to-left", good, "the same"},
    {"name-every-byte", good, "the same"},
    {"name-option", good, "tar takes no name for an option"},
    {"name-backslash", good, "a name like others"},
    {"name-quotes", good, "no shell sees it"},
    {"name-blank", good, "a name like others"},
    {"name-format", good, "a name like others"},
    {"name-1000-deep", good, "the panel unpacks it"},
    {"name-file-then-folder", good, "a warning: the folder takes the file's place"},
    {"name-file-named-compile", good, "an application may bring a file of that name"},
    {"name-256-bytes", "names", "cannot be made"},
    {"name-too-long-path", "names", "cannot be made"},
    {"name-empty", "names", "cannot be made"},
    {"name-dot", "names", "cannot be made"},
    {"name-folder-then-file", "names", "cannot be made: the folder is not empty"},
};
// clang-format on

std::array<bool, std::size(decisions)> used{};

bool isFor(const Decision &decision, const QByteArray &name)
{
    const QByteArray package = decision.package;
    return package.endsWith('*') ? name.startsWith(package.chopped(1)) : name == package;
}
} // namespace

const Decision *findDecision(const QByteArray &name)
{
    const auto *found
        = std::find_if(std::begin(decisions), std::end(decisions),
                       [&name](const Decision &decision) { return isFor(decision, name); });
    if (found == std::end(decisions)) {
        return nullptr;
    }
    used[size_t(found - std::begin(decisions))] = true;
    return found;
}

QByteArray unusedDecisions()
{
    QByteArrayList unused;
    for (size_t row = 0; row < used.size(); ++row) {
        if (!used[row]) {
            unused += decisions[row].package;
        }
    }
    return unused.join(' ');
}
