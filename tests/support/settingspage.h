#pragma once

#include "shell/biosinterface.h"

#include <QStringList>
#include <QTableWidget>

#include <memory>

/// The settings window with one of its pages open. Tests operate it by clicks.
class SettingsPage
{
public:
    enum Start { OpensPage, StaysClosed };

    /// Writes @p settings to the settings file, shows the window and opens the page of the button
    /// @p buttonName, "label:index", unless @p start is StaysClosed. @p limits are those of the
    /// window.
    SettingsPage(const QString &buttonName, const QByteArray &settings, Start start = OpensPage,
                 const ToolLimits &limits = {});

    BiosInterface *window() const { return m_window.get(); }
    QWidget *page() const;
    QTableWidget *table() const { return page()->findChild<QTableWidget *>(); }

    /// Whether the title bar has Cancel, this title and OK.
    bool hasTitle(const QString &title) const;

    /// Opens the page from the main page.
    void open() const;

    /// Taps the button @p name of the title bar, "ok" or "cancel".
    void leave(const char *name) const;

private:
    QString m_buttonName;
    std::unique_ptr<BiosInterface> m_window;
};

/// Moves the focus from @p window to another window and back.
void loseAndRegainFocus(QWidget *window);

/// The texts of the rows of @p table.
QStringList rowTexts(const QTableWidget *table);

/// The row of the file @p name; the test program ends if there is none.
int rowOf(const QTableWidget *table, const QString &name);

/// Taps the row @p row of @p table, at its left or right end.
void tapRow(QTableWidget *table, int row, Qt::Edge end = Qt::LeftEdge);

/// Drags a finger by @p distance pixels downwards from the middle of @p table.
void dragTable(const QTableWidget *table, int distance);
