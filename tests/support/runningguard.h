#pragma once

#include <QByteArray>
#include <QProcess>

/// "talmero-guard watch", which notes what it flushes. It has copied all files when it is
/// constructed.
class RunningGuard
{
public:
    explicit RunningGuard(const char *program = NOTING_GUARD);
    ~RunningGuard();
    Q_DISABLE_COPY_MOVE(RunningGuard)

    /// What it has printed so far.
    QByteArray output() const;

    /// Asks it to end. Result: its exit status; -1 if it crashed.
    int end();

private:
    QProcess m_process;
};

/// What "talmero-guard status" prints.
QByteArray guardStatus();

/// What the guard has flushed since forgetFlushes(): one line each, the call and the path.
QByteArray flushes();

void forgetFlushes();

/// Restores a panel that nobody has saved settings on, without copies.
void resetGuardedPanel();
