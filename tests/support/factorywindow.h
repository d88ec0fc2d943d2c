#pragma once

#include "faketools.h"
#include "system/run/toollimits.h"

#include <memory>

class QPushButton;
class QWidget;
class SoftwareSetup;

/// The end of the text that both echo tests send, and the verdicts that follow the echo.
inline const QString alphabet = "1234567890abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
inline const QString okLines = '\n' + QString(38, '-') + "\nTest Ok!";
inline const QString failLines = '\n' + QString(38, '-') + "\nTest Fail!";

/// The factory window. Tests operate it by clicks. Its pauses are real, except those of its start.
class FactoryWindow
{
public:
    /// Puts stand-ins for @p tools and for the tools of the start on PATH. @p limits are those of
    /// the window.
    explicit FactoryWindow(const QStringList &tools = {}, const ToolLimits &limits = {});
    ~FactoryWindow();
    Q_DISABLE_COPY_MOVE(FactoryWindow)

    SoftwareSetup *window() const;
    const FakeTools &tools() const;

    /// The widget that holds the rows of the setup page (0) or the test page (1).
    QWidget *page(int index) const;

    /// The recorded runs since the window was built.
    QStringList calls() const;

    /// The button with this text. @p number counts buttons with the same text from 0.
    QPushButton *button(const QString &text, int number = 0) const;
    void click(const QString &text, int number = 0) const;

    /// The text that the port tests have printed so far.
    QString result() const;

    /// Destroys the window.
    void close();

private:
    FakeTools m_tools;
    std::unique_ptr<SoftwareSetup> m_window;
    qsizetype m_callsAtStart = 0;
};
