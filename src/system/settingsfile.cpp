#include "system/settingsfile.h"

#include "system/textcodec.h"

#include <QByteArrayView>
#include <QFile>

namespace {
constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");

constexpr uint blank = ' '; // all other white space of ASCII is below it

/// Whether @p line needs no simplifying, as those that the program wrote. May say no wrongly.
/// Looks at all bytes in any case: the compiler makes a fast loop of that.
bool isSimple(QByteArrayView line)
{
    const auto low = [](char byte) { return uint(static_cast<uchar>(byte) <= blank); };
    if (line.isEmpty() || low(line.front()) != 0 || low(line.back()) != 0) {
        return false;
    }
    uint found = 0;
    for (qsizetype at = 1; at < line.size(); ++at) {
        const uint isOtherThanBlank = uint(static_cast<uchar>(line[at]) != blank);
        found |= low(line[at]) & (isOtherThanBlank | low(line[at - 1]));
    }
    return found == 0;
}

std::optional<SettingsEntry> parseSimpleLine(QByteArrayView line)
{
    const qsizetype equals = line.indexOf('=');
    if (equals <= 0 || line.startsWith('#')) {
        return std::nullopt;
    }
    return SettingsEntry{textFromBytes(line.first(equals)), textFromBytes(line.sliced(equals + 1))};
}
} // namespace

std::optional<SettingsEntry> parseSettingsLine(QByteArrayView line)
{
    // On bytes, because the white space of Unicode includes bytes that are half a UTF-8 letter.
    return parseSimpleLine(isSimple(line) ? line : line.toByteArray().simplified());
}

QList<QByteArrayView> settingsLines(QByteArrayView text)
{
    if (text.startsWith(byteOrderMark)) {
        text = text.sliced(byteOrderMark.size());
    }
    QList<QByteArrayView> lines;
    for (qsizetype end = 0; (end = text.indexOf('\n')) >= 0;) {
        lines += text.first(end);
        text = text.sliced(end + 1);
    }
    lines += text;
    return lines;
}

void applySettingsText(QByteArrayView text, SettingsMap &settings)
{
    for (const QByteArrayView line : settingsLines(text)) {
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
