#include "decisions.h"

#include <QByteArrayList>

#include <algorithm>
#include <array>

// A package without a row here fails the test: a person has to decide what verify must say of it.

namespace {
constexpr const char *good = nullptr;

// clang-format off
constexpr Decision decisions[] = {
    {"header-36-bytes", "gzip", "the panel removes the old application and installs nothing"},
    {"header-37-bytes", "gzip", "like header-36-bytes"},
    {"header-*", "header", "shorter than a header: refused"},

    {"kind-firmware-named-as-application", good, "the page accepts both kinds under either name"},
    {"kind-application-named-as-firmware", good, "either extension installs"},
    {"kind-application-named-as-image", "panel", "refused"},
    {"kind-image-of-35-bytes", "panel", "refused"},
    {"kind-firmware-for-a-model", "panel", "refused: a model is no OEM"},
    {"kind-0x4", "panel", "a BIOS image named as an application: a temporary copy stays"},
    {"kind-0x*", "header", "an unknown kind: nothing is installed, a temporary copy stays"},

    {"version-application-*", "panel", "refused: for another runtime"},
    {"version-firmware-*", good, "a firmware may have any version"},
    {"version-image-0x0", "panel", "refused: older"},
    {"version-image-0x3", "panel", "refused: the same version"},
    {"version-image-*", good, "newer"},

    {"target-short-code", good, "the model's other name"},
    {"target-rest-behind-end", good, "bytes after the NUL byte are ignored"},
    {"target-*", "panel", "refused: for another target"},

    {"cut-*", "gzip", "half a package"},
    {"gzip-two-streams", good, "gzip data may be several streams in a row"},
    {"gzip-random-inside", "tar", "not an archive"},
    {"gzip-nothing-inside", "tar", "not an archive"},
    {"gzip-gzip-inside", "tar", "not an archive"},
    {"gzip-no-tar-end", "tar", "may have been cut off before it was compressed"},
    {"gzip-bomb", "size", "fills the disk"},
    {"gzip-random-1", "gzip", "damaged"},
    {"gzip-random-100", "gzip", "damaged"},
    {"gzip-random-100000", "gzip", "damaged"},
    {"gzip-gzip-head-alone", "gzip", "damaged"},
    {"gzip-bzip2", "gzip", "the panel unpacks only gzip"},
    {"gzip-xz", "gzip", "the panel unpacks only gzip"},
    {"gzip-zip", "gzip", "only some gzip programs unpack it"},
    {"gzip-plain-tar", "gzip", "the panel unpacks only gzip"},
    {"gzip-reserved-flags", "gzip", "damaged"},
    {"gzip-other-method", "gzip", "damaged"},
    {"gzip-wrong-checksum", "gzip", "damaged"},
    {"gzip-wrong-size", "gzip", "damaged"},
    {"gzip-rest-behind", "gzip", "damaged"},
    {"gzip-damaged-firmware", "gzip", "raises the version although nothing is unpacked"},
    {"gzip-damaged-image", "gzip", "damaged"},
    {"gzip-endless-file", "gzip", "zeros after a header"},
    {"large-longer-than-30-s", "size", "fills the disk"},

    {"tar-wrong-checksum", "tar", "damaged"},
    {"tar-8-gigabytes-claimed", "size", "claims more than the archive holds"},
    {"tar-pax-size", "size", "claims more than the archive holds"},
    {"tar-sparse-terabyte", "tar", "slows down everything that reads the folder"},
    {"tar-negative-size", "tar", "damaged"},
    {"tar-size-of-all-bits", "tar", "damaged"},
    {"tar-endless-long-name", "tar", "damaged"},
    {"tar-pax-of-garbage", "tar", "damaged"},
    {"tar-pax-in-another-charset", good, "its names are ASCII, so the charset makes no difference"},
    {"tar-unknown-type", "tar", "each tar handles it differently"},
    {"tar-goes-on-from-another-disk", "tar", "half an archive"},
    {"tar-label", "tar", "an empty archive"},
    {"tar-folder-with-contents", "tar", "each tar continues at a different place"},
    {"tar-far-future", good, "an odd time does no harm"},
    {"tar-before-all-time", good, "an odd time does no harm"},
    {"tar-owner-out-of-range", "tar", "an owner that no system has"},
    {"tar-same-member-1000-times", good, "a warning: the last one wins"},
    {"tar-100000-members", good, "a warning: unpacking takes almost up to the time limit"},

    {"tar-name-*", "names", "leads out"},
    {"tar-absolute", "names", "leads out"},
    {"tar-pax-name", "names", "leads out"},
    {"tar-pax-absolute", "names", "leads out"},
    {"tar-pax-sparse-name", "tar", "leads out and is damaged"},
    {"tar-long-name", "names", "leads out"},

    {"tar-through-absolute-link", "links", "leads out"},
    {"tar-through-relative-link", "links", "leads out"},
    {"tar-through-link-in-a-folder", "links", "leads out"},
    {"tar-hard-link-through-absolute-link", "links", "leads out"},
    {"tar-hard-link-through-relative-link", "links", "leads out"},
    {"tar-written-through-file-link", "links", "leads out"},
    {"tar-hard-link-absolute", "links", "leads out"},
    {"tar-hard-link-relative", "links", "leads out"},
    {"tar-hard-link-to-itself", "links", "cannot be created"},
    {"tar-link-to-itself", "links", "a file below it cannot be created"},
    {"tar-links-in-a-ring", "links", "a file below it cannot be created"},
    {"tar-link-to-nothing", "links", "cannot be created"},
    {"tar-100-links-in-a-chain", good, "warnings: all of them stay inside the folder"},

    {"tar-mode-4755", "rights", "a root shell for any user"},
    {"tar-mode-2755", "rights", "runs with the group's rights"},
    {"tar-mode-6755", "rights", "runs with the rights of both"},
    {"tar-rights-of-the-target", "rights", "the panel loses access to its folder"},
    {"tar-sticky-folder", good, "like /tmp"},
    {"tar-no-rights", good, "a warning: root can still read it"},
    {"tar-folder-without-rights", good, "a warning: root can still read it"},
    {"tar-foreign-owner", good, "a warning: every archive of an ordinary user has one"},
    {"tar-pipe", "rights", "blocks any reader"},
    {"tar-device-0-0", "rights", "a device"},
    {"tar-memory-device", "rights", "a device"},
    {"tar-disk-device", "rights", "a device"},

    {"planted-pipe-1", "rights", "blocks any reader"},
    {"planted-hard-link-2", "links", "links to something that only an earlier package has left"},
    {"planted-set-user-id-2", "rights", "a root shell"},
    // These follow a link of an earlier package, which verify cannot see in the package itself.
    {"planted-file-2", good, "by itself, a file in a folder"},
    {"planted-over-the-guard-2", good, "by itself, a file in a folder"},
    {"planted-mode-of-a-folder-2", good, "a warning: everyone may write to a folder"},
    {"planted-target-itself-2", good, "a file"},
    {"planted-folder-first-2", good, "a folder replaces the link"},
    {"planted-file-instead-2", good, "a file replaces the link"},
    {"planted-file-link-2", good, "a file replaces the link"},
    {"planted-application-folder-2", good, "a folder replaces the link"},
    {"planted-pipe-2", good, "a file replaces the pipe"},
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

    {"name-255-bytes", good, "the longest possible name"},
    {"name-line-feed", good, "a warning: the panel unpacks it"},
    {"name-no-utf-8", good, "a warning: the panel unpacks it"},
    {"name-escape", good, "a warning: the panel unpacks it"},
    {"name-carriage-return", good, "a warning: the panel unpacks it"},
    {"name-right-to-left", good, "a warning: the panel unpacks it"},
    {"name-every-byte", good, "a warning: the panel unpacks it"},
    {"name-option", good, "tar does not treat names as options"},
    {"name-backslash", good, "an ordinary name"},
    {"name-quotes", good, "the panel passes no names to a shell"},
    {"name-blank", good, "an ordinary name"},
    {"name-format", good, "an ordinary name"},
    {"name-1000-deep", good, "the panel unpacks it"},
    {"name-file-then-folder", good, "a warning: the folder replaces the file"},
    {"name-file-named-compile", good, "an application may contain a file of that name"},
    {"name-256-bytes", "names", "cannot be created"},
    {"name-too-long-path", "names", "cannot be created"},
    {"name-empty", "names", "cannot be created"},
    {"name-dot", "names", "cannot be created"},
    {"name-folder-then-file", "names", "cannot be created: the folder is not empty"},
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
