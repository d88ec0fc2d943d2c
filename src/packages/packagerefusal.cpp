#include "packages/packagerefusal.h"

#include "packages/packagecheck.h"

#include <QtGlobal>

#include <algorithm>

namespace {
// clang-format off
constexpr PackageRefusal refusals[] = {
    // This title has always been misspelt.
    {OpenFileError,    QT_TRANSLATE_NOOP("BiosInterface", "File Transter"),
                       QT_TRANSLATE_NOOP("BiosInterface", "Open File Error")},
    {WrongVersion,     QT_TRANSLATE_NOOP("BiosInterface", "File Transfer"),
                       QT_TRANSLATE_NOOP("BiosInterface", "Error Firmware Version while Install KPC")},
    {WrongModel,       QT_TRANSLATE_NOOP("BiosInterface", "File Transfer"),
                       QT_TRANSLATE_NOOP("BiosInterface", "Error Panel Model while Install KPC")},
    {WrongFirmwareOem, QT_TRANSLATE_NOOP("BiosInterface", "File Transfer"),
                       QT_TRANSLATE_NOOP("BiosInterface", "Error Panel Model while Install Firmware")},
};
// clang-format on
} // namespace

const PackageRefusal *findPackageRefusal(int result)
{
    const auto *found = std::find_if(
        std::begin(refusals), std::end(refusals),
        [result](const PackageRefusal &refusal) { return refusal.result == result; });
    return found != std::end(refusals) ? found : nullptr;
}
