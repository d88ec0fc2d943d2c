#pragma once

#include <QString>
#include <QStringList>

class QTableWidget;
class QTableWidgetItem;

// The tables that list found files, one per row.

/// Sets up @p table for touch: no headers, rows high enough for a finger, scrolling by finger. Its
/// columns must exist already.
void setUpFileTable(QTableWidget *table);

/// Replaces the rows of @p table with the files @p names in @p folder, which ends with "/". Each
/// file is in column 0 and spans all columns.
void showFiles(QTableWidget *table, const QString &folder, const QStringList &names);

/// The full path of the file that @p item of such a table shows.
QString filePath(const QTableWidgetItem *item);

/// @p name for display in one line: unprintable characters are replaced with U+FFFD.
QString printableName(const QString &name);
