#include "system/settings/settingsfile.h"

#include "system/textcodec.h"

#include <QByteArrayView>
#include <QFile>

namespace {
constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");
} // namespace

std::optional<SettingsEntry> parseSettingsLine(QByteArrayView line)
{
    // Simplified as bytes, so that only ASCII white space counts.
    const QByteArray bytes = line.toByteArray().simplified();
    const QByteArrayView simple = bytes;
    const qsizetype equals = simple.indexOf('=');
    if (equals <= 0 || simple.startsWith('#')) {
        return std::nullopt;
    }
    return SettingsEntry{textFromBytes(simple.first(equals)),
                         textFromBytes(simple.sliced(equals + 1))};
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
                settings.insert(entry->key, entry->value);
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
    // If the first key starts with the mark's bytes, the reader would skip them: add a real mark.
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
