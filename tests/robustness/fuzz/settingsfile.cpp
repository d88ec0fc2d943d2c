#include "fuzz.h"

#include "system/settings/settingsfile.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    SettingsMap settings;
    applySettingsText(inputBytes(data, size), settings);
    for (auto entry = settings.cbegin(); entry != settings.cend(); ++entry) {
        require(!entry.key().isEmpty() && !entry.value().isEmpty());
    }
    // Formatted settings must parse to the same settings, and format to the same text again.
    const QByteArray written = formatSettings(settings);
    SettingsMap again;
    applySettingsText(written, again);
    require(again == settings);
    require(formatSettings(again) == written);
    return 0;
}
