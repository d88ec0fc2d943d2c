#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QMap>
#include <QString>

#include <optional>

/// The settings in memory. An absent key and an empty value both mean "not set".
using SettingsMap = QMap<QString, QString>;

/// One "key=value" line of a settings file. An empty value asks for the key to be removed.
struct SettingsEntry
{
    QString key;
    QString value;
};

/// Reads one line of a settings file, with or without its line end.
/// White space (ASCII; other bytes are kept as they are) is trimmed at both ends and every inner
/// run becomes one blank. Blanks around the first "=" then belong to the key and to the value.
/// Result: the entry, or nothing for a blank line, a comment ("#"), a line that begins with "="
/// and a line without "=".
std::optional<SettingsEntry> parseSettingsLine(QByteArrayView line);

/// The lines of the settings text @p text. A UTF-8 byte order mark at its start, as editors leave
/// it, is passed over. The lines are parts of @p text and last as long as it.
QList<QByteArrayView> settingsLines(QByteArrayView text);

/// Applies every line of @p text to @p settings: a value inserts or replaces its key, an empty
/// value removes it.
void applySettingsText(QByteArrayView text, SettingsMap &settings);

/// The whole settings file: "key=value\n" for each key in ascending order. Applied to an empty map
/// it gives @p settings again: if the first key begins with a byte order mark, another one stands
/// before it.
QByteArray formatSettings(const SettingsMap &settings);

/// Adds the entries of the file at @p path to @p settings.
/// A file that is missing or cannot be read leaves @p settings as it is.
void readSettingsFile(const QString &path, SettingsMap &settings);

/// Writes @p settings over the file at @p path, in place and in one write call.
/// Result: false if the file cannot be opened or does not take the text whole.
bool writeSettingsFile(const QString &path, const SettingsMap &settings);
