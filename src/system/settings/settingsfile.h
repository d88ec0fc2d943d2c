#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QMap>
#include <QString>

#include <optional>

/// The settings in memory. An absent key and an empty value both mean "not set".
using SettingsMap = QMap<QString, QString>;

/// One "key=value" line of a settings file. An empty value removes the key.
struct SettingsEntry
{
    QString key;
    QString value;
};

/// Parses one line of a settings file, with or without its line end.
/// ASCII white space is trimmed at both ends, and every run inside the line becomes one blank. A
/// blank before the first "=" belongs to the key, a blank after it to the value.
/// Result: the entry; nothing for a blank line, a comment ("#"), a line that starts with "=" and a
/// line without "=".
std::optional<SettingsEntry> parseSettingsLine(QByteArrayView line);

/// The lines of the settings file @p text, as views into it. A UTF-8 byte order mark at the start,
/// which some editors write, is skipped.
QList<QByteArrayView> settingsLines(QByteArrayView text);

/// Applies every line of @p text to @p settings: a value inserts or replaces its key, an empty
/// value removes it.
void applySettingsText(QByteArrayView text, SettingsMap &settings);

/// Content of the settings file: "key=value\n" for each key in ascending order. If the first key
/// starts with a byte order mark, the text gets another one, so that reading it gives the same key.
QByteArray formatSettings(const SettingsMap &settings);

/// Adds the entries of the file at @p path to @p settings.
/// Leaves @p settings unchanged if the file is missing or cannot be read.
void readSettingsFile(const QString &path, SettingsMap &settings);

/// Overwrites the file at @p path with @p settings, in place and with one write call.
/// Result: false if the file cannot be opened or written completely.
bool writeSettingsFile(const QString &path, const SettingsMap &settings);
