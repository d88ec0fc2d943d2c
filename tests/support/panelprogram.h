#pragma once

#include <QImage>
#include <QPoint>
#include <QProcess>
#include <QStringList>

/// The real program on the display of the panel, during the lifetime of this object.
class PanelProgram
{
public:
    explicit PanelProgram(const QStringList &arguments = {});
    ~PanelProgram();
    Q_DISABLE_COPY_MOVE(PanelProgram)

    bool isRunning() const;

    /// Waits up to 10 s for the end. Result: the exit status; -1 after a crash or without an end.
    int waitForEnd();

    /// Standard error of the program so far, which includes the debug channel.
    QString errorText();

private:
    /// Kills the program and its tools. With sanitizers, Qt 6.8 starts a tool by a copy of the
    /// program that waits for it. If only the program were killed at that moment, the copy would
    /// stay and keep the window on the screen.
    void killGroup();

    QProcess m_process;
    QString m_errorText;
};

/// A picture of the whole screen.
QImage screenImage();

/// Colour of one pixel of the screen.
QColor screenColor(QPoint at);

/// Taps the panel at @p at, through the driver of its touch device.
void tapScreen(QPoint at);

/// Puts the finger on the panel at @p at and leaves it there.
void putFingerDown(QPoint at);

/// Moves the finger on the panel to @p to.
void moveFinger(QPoint to);

/// Lifts the finger.
void liftFinger();

/// Runs a tool. Result: its standard output. The test program ends if the tool fails.
QString toolOutput(const QStringList &command);
