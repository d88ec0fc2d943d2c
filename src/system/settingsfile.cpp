#include "system/settingsfile.h"

#include "system/textcodec.h"

#include <QByteArrayView>
#include <QFile>

namespace {
constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");

constexpr char blank = ' '; // all other white space of ASCII is below it

bool isLow(char byte)
{
    return byte >= 0 && byte <= blank;
}

/// Whether @p line needs no simplifying, as those that the program wrote. May say no wrongly.
/// Looks at all bytes in any case: the compiler makes a fast loop of that.
bool isSimple(QByteArrayView line)
{
    if (line.isEmpty() || isLow(line.front()) || isLow(line.back())) {
        return false;
    }
    bool found = false;
    for (qsizetype at = 1; at < line.size(); ++at) {
        found |= isLow(line[at]) & ((line[at] != blank) | (line[at - 1] == blank));
    }
    return !found;
}
} // namespace

std::optional<SettingsEntry> parseSettingsLine(const QByteArray &line)
{
    // On bytes, because the white space of Unicode includes bytes that are half a UTF-8 letter.
    const QByteArray simple = isSimple(line) ? line : line.simplified();
    const qsizetype equals = simple.indexOf('=');
    if (equals <= 0 || simple.startsWith('#')) {
        return std::nullopt;
    }
    const QByteArrayView text = simple;
    return SettingsEntry{textFromBytes(text.first(equals)), textFromBytes(text.sliced(equals + 1))};
}

QByteArrayList settingsLines(const QByteArray &text)
{
    return (text.startsWith(byteOrderMark) ? text.mid(byteOrderMark.size()) : text).split('\n');
}

void applySettingsText(const QByteArray &text, SettingsMap &settings)
{
    for (const QByteArray &line : settingsLines(text)) {
        if (const auto entry = parseSettingsLine(line)) {
            if (entry->value.isEmpty()) {
                settings.remove(entry->key);
            } else {
                // The program writes them in ascending order: each belongs behind those before.
                settings.insert(settings.cend(), entry->key, entry->value);
            }
        }
    }
}

QByteArray formatSettings(const SettingsMap &settings)
{
    QByteArray text;
    for (auto entry = settings.cbegin(); entry != settings.cend(); ++entry) {
        text += bytesFromText(entry.key());
        text += '=';
        text += bytesFromText(entry.value());
        text += '\n';
    }
    // A key that begins as the mark does is not to be taken for it.
    return text.startsWith(byteOrderMark) ? text.prepend(byteOrderMark) : text;
}

void readSettingsFile(const QString &path, SettingsMap &settings)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        applySettingsText(file.readAll(), settings);
    }
}

bool writeSettingsFile(const QString &path, const SettingsMap &settings)
{
    const QByteArray text = formatSettings(settings);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
        return false;
    }
    return file.write(text) == text.size();
}
