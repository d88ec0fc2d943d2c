#pragma once

#include <QImage>
#include <QPoint>
#include <QProcess>
#include <QStringList>

/// The real program, running on the panel's display for as long as this lives.
class PanelProgram
{
public:
    explicit PanelProgram(const QStringList &arguments = {});
    ~PanelProgram();
    Q_DISABLE_COPY_MOVE(PanelProgram)

    bool isRunning() const;

    /// Waits for the end for at most 10 s. Result: the exit status; -1 for a crash or no end.
    int waitForEnd();

    /// What the program wrote to its standard error, on which the debug channel is, so far.
    QString errorText();

private:
    QProcess m_process;
    QString m_errorText;
};

/// A picture of the panel's whole screen.
QImage screenImage();

/// Colour of one pixel of the screen.
QColor screenColor(QPoint at);

/// Touches the panel at @p at for a moment, through the driver of its touch device.
void tapScreen(QPoint at);

/// Puts the finger on the panel at @p at and leaves it there.
void putFingerDown(QPoint at);

/// Moves the finger, which is on the panel, to @p to.
void moveFinger(QPoint to);

/// Takes the finger off the panel.
void liftFinger();

/// Runs a tool and gives back what it writes to standard output. The test program ends if the
/// tool fails.
QString toolOutput(const QStringList &command);
