#include "panelprogram.h"

#include "panelguard.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QTest>

#include <csignal>

#include <unistd.h>

namespace {
constexpr int endLimit = 10000; // ms

void sendToFinger(const QString &line)
{
    toolOutput({PANEL_SIMULATOR "/finger", "send", line});
}
} // namespace

PanelProgram::PanelProgram(const QStringList &arguments)
{
    requirePanel();
    m_process.setProcessChannelMode(QProcess::SeparateChannels);
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.setChildProcessModifier([] { setpgid(0, 0); });
    m_process.start(PANEL_PROGRAM, arguments);
    if (!m_process.waitForStarted()) {
        qFatal("cannot start %s", PANEL_PROGRAM);
    }
}

PanelProgram::~PanelProgram()
{
#ifdef PANEL_COVERAGE
    m_process.terminate(); // it writes its coverage counters when it exits
    m_process.waitForFinished(endLimit);
#endif
    killGroup();
}

void PanelProgram::killGroup()
{
    if (!isRunning()) {
        return;
    }
    const auto group = static_cast<pid_t>(m_process.processId());
    kill(-group, SIGKILL);
    m_process.waitForFinished();
    if (!QTest::qWaitFor([group] { return kill(-group, 0) != 0; }, endLimit)) {
        qFatal("the program or one of its tools cannot be killed");
    }
}

bool PanelProgram::isRunning() const
{
    return m_process.state() == QProcess::Running;
}

int PanelProgram::waitForEnd()
{
    const bool ended = m_process.waitForFinished(endLimit) || !isRunning();
    return ended && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

QString PanelProgram::errorText()
{
    m_errorText += QString::fromUtf8(m_process.readAllStandardError());
    return m_errorText;
}

QImage screenImage()
{
    return QGuiApplication::primaryScreen()->grabWindow(0).toImage();
}

QColor screenColor(QPoint at)
{
    return screenImage().pixelColor(at);
}

void tapScreen(QPoint at)
{
    sendToFinger(QString("tap %1 %2").arg(at.x()).arg(at.y()));
}

void putFingerDown(QPoint at)
{
    sendToFinger(QString("down %1 %2").arg(at.x()).arg(at.y()));
}

void moveFinger(QPoint to)
{
    sendToFinger(QString("move %1 %2").arg(to.x()).arg(to.y()));
}

void liftFinger()
{
    sendToFinger("up");
}

QString toolOutput(const QStringList &command)
{
    QProcess process;
    process.start(command.first(), command.mid(1));
    if (!process.waitForFinished() || process.exitCode() != 0) {
        qFatal("%s failed: %s", qPrintable(command.join(' ')),
               process.readAllStandardError().constData());
    }
    return QString::fromUtf8(process.readAllStandardOutput());
}
