#include "judge.h"

#include "system/files/versionfiles.h"
#include "system/settings/settingskeys.h"
#include "system/settings/storedports.h"
#include "system/textcodec.h"

#include <algorithm>

namespace Guard {
namespace {
constexpr char programsFirstLine[] = "auto lo \n";

/// White space, or zero bytes: some file systems leave these after a power cut.
bool isBlank(const QByteArray &text)
{
    return QByteArray(text).replace('\0', ' ').trimmed().isEmpty();
}

/// Whether the program can have written the settings @p text, up to its last line end: nothing but
/// entries, in ascending order. It also stores empty values, which it does not read.
bool isFormatted(const QByteArray &text)
{
    const QByteArray lines = text.endsWith('\n') ? text.chopped(1) : text;
    QString previous;
    for (const QByteArrayView line : settingsLines(lines)) {
        const auto entry = parseSettingsLine(line);
        if (!entry || entry->key <= previous
            || bytesFromText(entry->key) + '=' + bytesFromText(entry->value) != line) {
            return text.isEmpty();
        }
        previous = entry->key;
    }
    return true;
}

/// Whether the program was cut off in the last line of the settings @p text.
bool endsWithinLine(const QByteArray &text)
{
    if (text.endsWith('\n')) {
        return false;
    }
    const QByteArray last = text.mid(text.lastIndexOf('\n') + 1).trimmed();
    const auto entry = parseSettingsLine(last);
    const bool isWhole
        = last.isEmpty() || last.startsWith('#') || (entry && !entry->value.isEmpty());
    return !isWhole || isFormatted(text);
}

QStringList portKeys()
{
    QStringList keys;
    for (const int lan : {0, 1}) {
        keys += {ethernetKeys(lan).address, ethernetKeys(lan).mask};
    }
    return keys;
}

/// The keys of @p copy that come after the last key of @p settings.
QStringList missingAtTheEnd(const SettingsMap &settings, const SettingsMap &copy)
{
    QStringList keys = copy.keys();
    if (!settings.isEmpty()) {
        keys.removeIf([&settings](const QString &key) { return key <= settings.lastKey(); });
    }
    return keys;
}

/// Whether the program has stored @p settings and then written ifupdown's file for them, so that
/// the @p missing keys were removed on purpose.
bool areRemovedPorts(const QStringList &missing, const SettingsMap &settings,
                     const QByteArray &interfaces)
{
    const QStringList ports = portKeys();
    return std::all_of(missing.begin(), missing.end(),
                       [&ports](const QString &key) { return ports.contains(key); })
        && comparePair(interfaces, settings) == Pairing::Equal;
}

/// The lines of ifupdown's file that are not blank, with single blanks.
QByteArrayList linesOf(const QByteArray &interfaces)
{
    QByteArrayList lines;
    for (const QByteArray &line : interfaces.split('\n')) {
        if (const QByteArray simple = line.simplified(); !simple.isEmpty()) {
            lines += simple;
        }
    }
    return lines;
}

/// Whether the program can have written the line @p line, which linesOf() returned.
bool isProgramsLine(const QByteArray &line)
{
    static const QByteArrayList whole = [] {
        QByteArrayList lines{"auto lo", "iface lo inet loopback"};
        for (const int lan : {0, 1}) {
            const QByteArray port = ethernetKeys(lan).interface.toLatin1();
            lines += {"auto " + port, "iface " + port + " inet dhcp",
                      "iface " + port + " inet static"};
        }
        return lines;
    }();
    const QByteArray keyword = line.split(' ').first();
    return whole.contains(line) || keyword == "address" || keyword == "netmask";
}

bool isProgramsFile(const QByteArray &interfaces)
{
    const QByteArrayList lines = linesOf(interfaces);
    return interfaces.startsWith(programsFirstLine)
        && std::all_of(lines.begin(), lines.end(), isProgramsLine);
}
} // namespace

Fault faultOf(Kind kind, const QByteArray &text)
{
    if (kind == Kind::NoCopy) {
        return Fault::None;
    }
    if (isBlank(kind == Kind::Line ? bytesFromText(firstLineOf(text)) : text)) {
        return Fault::Empty;
    }
    if (text.contains('\0') || (kind == Kind::Settings && endsWithinLine(text))) {
        return Fault::Cut;
    }
    return Fault::None;
}

Fault settingsFault(const QByteArray &text, const QByteArray &copy, const QByteArray &interfaces)
{
    const Fault fault = faultOf(Kind::Settings, text);
    if (copy.isEmpty()) {
        return fault; // there is nothing to compare it with
    }
    const SettingsMap settings = settingsIn(text);
    const SettingsMap copied = settingsIn(copy);
    if (settings == copied && !text.contains('\0')) {
        return Fault::None; // nothing is lost
    }
    if (fault == Fault::Cut || (fault == Fault::None && !isFormatted(text))) {
        return fault;
    }
    const QStringList missing = missingAtTheEnd(settings, copied);
    if (missing.isEmpty() || areRemovedPorts(missing, settings, interfaces)) {
        return Fault::None;
    }
    return fault == Fault::Empty ? Fault::Empty : Fault::Cut;
}

Fault interfacesFault(const QByteArray &text, const QByteArray &copy, const SettingsMap &settings)
{
    const Fault fault = faultOf(Kind::Interfaces, text);
    const bool isStart = text.size() < copy.size() && copy.startsWith(text);
    return fault == Fault::None && isStart && comparePair(text, settings) != Pairing::Equal
        ? Fault::Cut
        : fault;
}

SettingsMap settingsIn(const QByteArray &text)
{
    SettingsMap settings;
    applySettingsText(text, settings);
    return settings;
}

bool hasPortKeys(const SettingsMap &settings)
{
    const QStringList keys = portKeys();
    return std::any_of(keys.begin(), keys.end(),
                       [&settings](const QString &key) { return settings.contains(key); });
}

Pairing comparePair(const QByteArray &interfaces, const SettingsMap &settings)
{
    if (!isProgramsFile(interfaces)) {
        return Pairing::Foreign;
    }
    return linesOf(interfaces) == linesOf(interfacesFor(settings)) ? Pairing::Equal
                                                                   : Pairing::Differs;
}

QByteArray interfacesFor(const SettingsMap &settings)
{
    return bytesFromText(interfacesFileText(storedPorts(settings)));
}
} // namespace Guard
