#pragma once

#include <QString>
#include <QStringList>

class QTableWidget;
class QTableWidgetItem;

// The tables that show found files, one to a row, in column 0.

/// Makes @p table, whose columns are set, a list for a finger: no headers, rows high enough, and
/// it scrolls with the finger. The file of a row is shown over all columns.
void setUpFileTable(QTableWidget *table);

/// Makes the rows of @p table those of the files @p names in @p folder, which ends with a "/", in
/// their order.
void showFiles(QTableWidget *table, const QString &folder, const QStringList &names);

/// The full path of the file that @p item of such a table stands for.
QString filePath(const QTableWidgetItem *item);

/// @p name as it can be shown in one line: what is no printable character is replaced.
QString printableName(const QString &name);
