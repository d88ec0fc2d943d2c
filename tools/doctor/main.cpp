// Checks whether a panel has everything that the settings program needs.

#include "arguments.h"
#include "checks.h"
#include "common/output.h"
#include "gather.h"
#include "report.h"
#include "system/debugtext.h"
#include "system/textcodec.h"

#include <QCoreApplication>

#include <cstdio>

using namespace Doctor;

namespace {
constexpr char usage[] =
    R"(Usage: talmero-doctor [--json] [--limit SECONDS]
       talmero-doctor --help | --version

Checks whether this panel has everything that the settings program needs, and
prints one line for each check: "ok", "warning" or "error", what was found, and
what to do about it. Run it as root in the panel's X session, or over ssh.
It changes nothing.

  --json           Prints one JSON object instead.
  --limit SECONDS  How long a tool may take to answer; the default is 5.
  --help           Shows this text.
  --version        Shows the version.

Exit status: 0 everything is ok; 1 there are warnings; 2 there are errors; 64 wrong
usage; 74 standard output cannot be written.
)";
constexpr char version[] = "talmero-doctor " PANEL_VERSION "\n";

int check(const Arguments &arguments)
{
    const Findings findings = runChecks(gatherFacts(arguments.limit));
    const QByteArray report = arguments.isJson ? jsonReport(findings) : textReport(findings);
    ToolReport::print(report);
    return statusOf(findings);
}

int run(const Arguments &arguments)
{
    if (!arguments.error.isEmpty()) {
        std::fprintf(stderr, "talmero-doctor: %s; see talmero-doctor --help\n",
                     printable(arguments.error).constData());
        return EX_USAGE;
    }
    switch (arguments.task) {
    case Arguments::Task::Help:
        std::fputs(usage, stdout);
        return 0;
    case Arguments::Task::Version:
        std::fputs(version, stdout);
        return 0;
    case Arguments::Task::Check:
        break;
    }
    return check(arguments);
}
} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    return ToolReport::endOfOutput("talmero-doctor",
                                   run(parseArguments(argumentTexts(argc, argv))));
}
