#pragma once

#include "shell/biosinterface.h"

#include <QStringList>
#include <QTableWidget>

#include <memory>

/// The settings window with one of its pages open, worked by clicks.
class SettingsPage
{
public:
    enum Start { OpensPage, StaysClosed };

    /// Makes @p settings the settings file, shows the window and opens the page of the button named
    /// @p buttonName, "label:index", unless @p start says that the test does so itself.
    /// @p limits says how long tools are waited for.
    SettingsPage(const QString &buttonName, const QByteArray &settings, Start start = OpensPage,
                 const ToolLimits &limits = {});

    BiosInterface *window() const { return m_window.get(); }
    QWidget *page() const;
    QTableWidget *table() const { return page()->findChild<QTableWidget *>(); }

    /// Whether the title bar has Cancel and OK and between them this title.
    bool hasTitle(const QString &title) const;

    /// Opens the page from the main page.
    void open() const;

    /// Leaves the page by the title bar's button @p name, "ok" or "cancel".
    void leave(const char *name) const;

private:
    QString m_buttonName;
    std::unique_ptr<BiosInterface> m_window;
};

/// Another window takes the focus from @p window and gives it back.
void loseAndRegainFocus(QWidget *window);

/// The texts of the rows of @p table.
QStringList rowTexts(const QTableWidget *table);

/// The row of the file @p name; the test program ends if there is none.
int rowOf(const QTableWidget *table, const QString &name);

/// Taps the row @p row of @p table, at its left end or at its right one.
void tapRow(QTableWidget *table, int row, Qt::Edge end = Qt::LeftEdge);

/// Puts a finger on the middle of @p table, moves it by @p distance pixels downwards and lifts it.
void dragTable(const QTableWidget *table, int distance);
