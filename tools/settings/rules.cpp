#include "rules.h"

#include "common/addresses.h"
#include "system/settings/displaychoices.h"
#include "system/settings/settingsfile.h"
#include "system/settings/settingskeys.h"
#include "system/textcodec.h"

#include <QStringList>

#include <algorithm>

namespace Settings {
namespace {
/// A key that a page stores.
struct PageKey
{
    QString key;
    bool (*isChoice)(const QString &value);
    QString choices; ///< what isChoice() accepts, for a person
};

bool isFlag(const QString &value)
{
    return value == QLatin1String("1");
}

bool isOrientation(const QString &value)
{
    return value == QLatin1String("horizontal") || value == QLatin1String("vertical");
}

/// "Close" has no value: it removes the key.
QStringList delays()
{
    QStringList values;
    for (const DelayItem &item : delayItems) {
        if (item.minutes != 0) {
            values += QString::number(item.minutes);
        }
    }
    return values;
}

bool isDelay(const QString &value)
{
    return delays().contains(value);
}

QStringList factors()
{
    QStringList values;
    for (const BrightnessItem &item : brightnessItems) {
        values += QLatin1String(item.factor);
    }
    return values;
}

bool isFactor(const QString &value)
{
    return factors().contains(value);
}

bool isPortAddress(const QString &value)
{
    return value == QLatin1String(dhcpValue) || ToolReport::isAddress(value);
}

const QList<PageKey> &pageKeys()
{
    static const QString address = "dhcp or an IPv4 address";
    static const QString mask = "a netmask such as 255.255.255.0";
    // clang-format off
    static const QList<PageKey> keys{
        {SettingsKeys::mouse,        isFlag,              "1; unset disables it"},
        {SettingsKeys::buzzer,       isFlag,              "1; unset disables it"},
        {SettingsKeys::orientation,  isOrientation,       "horizontal or vertical"},
        {SettingsKeys::screenSaving, isDelay,             delays().join(", ") + "; unset switches it off"},
        {SettingsKeys::brightness,   isFactor,            factors().join(", ")},
        {ethernetKeys(0).address,    isPortAddress,       address},
        {ethernetKeys(0).mask,       ToolReport::isMask,  mask},
        {ethernetKeys(1).address,    isPortAddress,       address},
        {ethernetKeys(1).mask,       ToolReport::isMask,  mask},
    };
    // clang-format on
    return keys;
}

const PageKey *findPageKey(const QString &key)
{
    const auto found = std::find_if(pageKeys().cbegin(), pageKeys().cend(),
                                    [&key](const PageKey &known) { return known.key == key; });
    return found != pageKeys().cend() ? &*found : nullptr;
}
} // namespace

QString formatError(const QString &key, const QString &value)
{
    const auto entry = parseSettingsLine(bytesFromText(key + '=' + value));
    const bool isKept = entry && !value.isEmpty() && entry->key == key && entry->value == value;
    return isKept ? QString() : QString("the file cannot hold this key and value");
}

QString pageError(const QString &key, const QString &value)
{
    const PageKey *known = findPageKey(key);
    if (known == nullptr) {
        return removalError(key);
    }
    return known->isChoice(value) ? QString() : QString("a page stores %1").arg(known->choices);
}

QString removalError(const QString &key)
{
    return findPageKey(key) != nullptr ? QString() : QString("no page stores this key");
}
} // namespace Settings
