#pragma once

#include "faketools.h"
#include "system/run/toollimits.h"

#include <memory>

class QPushButton;
class QWidget;
class SoftwareSetup;

/// What both echo tests send behind their own fields, and what they print behind the echo.
inline const QString alphabet = "1234567890abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
inline const QString okLines = '\n' + QString(38, '-') + "\nTest Ok!";
inline const QString failLines = '\n' + QString(38, '-') + "\nTest Fail!";

/// The factory window, worked by clicks. Its pauses are real once it is built.
class FactoryWindow
{
public:
    /// Puts stand-ins for the tools of its start on PATH, and for @p tools.
    explicit FactoryWindow(const QStringList &tools = {}, const ToolLimits &limits = {});
    ~FactoryWindow();
    Q_DISABLE_COPY_MOVE(FactoryWindow)

    SoftwareSetup *window() const;
    const FakeTools &tools() const;

    /// What the rows of the setup page (0) or the test page (1) lie on.
    QWidget *page(int index) const;

    /// The recorded runs since the window was built.
    QStringList calls() const;

    /// The button with this text; of several the one with this number.
    QPushButton *button(const QString &text, int number = 0) const;
    void click(const QString &text, int number = 0) const;

    /// All text that the port tests printed so far.
    QString result() const;

    /// Destroys the window.
    void close();

private:
    FakeTools m_tools;
    std::unique_ptr<SoftwareSetup> m_window;
    qsizetype m_callsAtStart = 0;
};
