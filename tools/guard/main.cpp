// Guards a panel's files against power cuts and full disks. systemd runs it.

#include "common/output.h"
#include "restore.h"
#include "status.h"
#include "system/debugtext.h"
#include "system/textcodec.h"
#include "watch.h"

#include <QCoreApplication>

#include <cstdio>

namespace {
constexpr char usage[] =
    R"(Usage: talmero-guard watch | restore | status
       talmero-guard --help | --version

Guards a panel's files against power cuts and full disks. systemd runs it.

  watch      Makes changes durable and copies good files, until it is ended.
  restore    Repairs what a power cut has left. Run it before the network and
             the session start.
  status     Prints whether the guard watches, and what it last repaired.
  --help     Shows this text.
  --version  Shows the version.

Exit status: 0 success; 1 a file could not be written, or another process watches
already; 64 wrong usage; 74 standard output cannot be written.
)";
constexpr char version[] = "talmero-guard " PANEL_VERSION "\n";

/// For wrong usage and for lost output see sysexits.h(3head).
enum ExitStatus : int { Done = 0, NotDone = 1 };

int printStatus()
{
    ToolReport::print(Guard::statusText());
    return Done;
}

int run(const QString &task)
{
    if (task == QLatin1String("watch")) {
        return Guard::watchPanel() ? Done : NotDone;
    }
    if (task == QLatin1String("restore")) {
        return Guard::restoreFiles() ? Done : NotDone;
    }
    if (task == QLatin1String("status")) {
        return printStatus();
    }
    if (task == QLatin1String("--help") || task == QLatin1String("--version")) {
        std::fputs(task == QLatin1String("--help") ? usage : version, stdout);
        return Done;
    }
    std::fprintf(stderr, "talmero-guard: unknown command: %s; see talmero-guard --help\n",
                 printable(task).constData());
    return EX_USAGE;
}
} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = argumentTexts(argc, argv);
    return ToolReport::endOfOutput("talmero-guard", run(arguments.join(' ')));
}
