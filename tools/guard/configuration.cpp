#include "configuration.h"

#include "reserve.h"
#include "system/settings/settingsfile.h"
#include "system/textcodec.h"

namespace Guard {
namespace {
constexpr qint64 mostReserve = 1024 * 1024; // KiB

bool readAllowedLink(const QString &value, Configuration &configuration)
{
    if (!value.startsWith('/')) {
        return false;
    }
    configuration.allowedLinks += bytesFromText(value);
    return true;
}

bool readRemoval(const QString &value, Configuration &configuration)
{
    if (value != QLatin1String("report") && value != QLatin1String("remove")) {
        return false;
    }
    configuration.removesLinks = value == QLatin1String("remove");
    return true;
}

bool readReserve(const QString &value, Configuration &configuration)
{
    bool isNumber = false;
    const qint64 size = value.toLongLong(&isNumber);
    if (!isNumber || size < 0 || size > mostReserve) {
        return false;
    }
    configuration.reserve = size * kibibyte;
    return true;
}

struct Key
{
    const char *name;
    bool (*read)(const QString &value, Configuration &configuration);
};

constexpr Key knownKeys[] = {
    {"allow.link", readAllowedLink},
    {"links", readRemoval},
    {"reserve.kib", readReserve},
};

bool readEntry(const SettingsEntry &entry, Configuration &configuration)
{
    for (const Key &key : knownKeys) {
        if (entry.key == QLatin1String(key.name)) {
            return key.read(entry.value, configuration);
        }
    }
    return false;
}
} // namespace

Configuration parseConfiguration(const QByteArray &text)
{
    Configuration configuration;
    for (const QByteArrayView line : settingsLines(text)) {
        const QByteArray simple = line.toByteArray().simplified();
        if (simple.isEmpty() || simple.startsWith('#')) {
            continue;
        }
        const auto entry = parseSettingsLine(line);
        if (!entry || !readEntry(*entry, configuration)) {
            configuration.problems += QString("%1: not understood: %2")
                                          .arg(QString(configurationFile), textFromBytes(simple));
        }
    }
    return configuration;
}
} // namespace Guard
