#include "runningguard.h"

#include "diskfiles.h"
#include "packagefiles.h"
#include "system/paths.h"
#include "toolrun.h"

#include <QFile>
#include <QTest>

namespace {
constexpr char outputFile[] = "/run/guard.log";
constexpr char syncLog[] = "/run/flushed"; // for synclog.cpp
} // namespace

RunningGuard::RunningGuard(const char *program)
{
    qputenv("SYNC_LOG", syncLog);
    m_process.setStandardOutputFile(outputFile);
    m_process.start(program, {"watch"});
    // the interfaces file is the last one
    if (!m_process.waitForStarted()
        || !QTest::qWaitFor([] { return guardStatus().contains("copy.interfaces"); })) {
        qFatal("the guard does not start");
    }
}

RunningGuard::~RunningGuard()
{
    end();
}

QByteArray RunningGuard::output() const
{
    return readFile(outputFile);
}

int RunningGuard::end()
{
    m_process.terminate();
    m_process.waitForFinished();
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

QByteArray guardStatus()
{
    return runTool(GUARD, {"status"}).output;
}

QByteArray flushes()
{
    return readFile(syncLog);
}

void forgetFlushes()
{
    writeFile(syncLog);
}

void resetGuardedPanel()
{
    resetInstalledFiles();
    emptyFolder("/var/lib/talmero-guard");
    writeFile(Paths::settingsFile, "app.mouse=1\n");
    writeFile(Paths::interfacesFile, "auto lo\niface lo inet loopback\n");
    QFile::remove("/etc/talmero-guard.conf");
    forgetFlushes();
}
