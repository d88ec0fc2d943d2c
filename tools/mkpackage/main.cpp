// Makes and inspects the package files that the panel installs from a stick.

#include "common/output.h"
#include "makepackage.h"
#include "options.h"
#include "packageinfo.h"
#include "report.h"
#include "system/debugtext.h"
#include "system/files/filecopy.h"
#include "system/textcodec.h"

#include <QCoreApplication>
#include <QFile>

#include <csignal>
#include <cstdio>

using namespace MkPackage;

namespace {
constexpr char usage[] =
    R"(Usage: talmero-mkpackage make --kind KIND --version N --target TEXT --output FILE FOLDER
       talmero-mkpackage info FILE
       talmero-mkpackage verify FILE [--for MODEL] [--runtime N] [--oem NAME] [--bios N]
                                [--rate MB] [--json]
       talmero-mkpackage --help | --version

Makes, inspects and checks packages for the panel's USB stick.

make   Packs the contents of FOLDER. The same contents give the same bytes.
  --kind KIND      application (.kpc), firmware (.fmw) or bios (.mo, add-ons .pkg)
  --version N      0 to 4294967295. For an application, the version of the runtime
                   that it needs; for firmware and bios, their own version.
  --target TEXT    At most 15 ASCII characters. For an application, the panel model;
                   for firmware, the OEM name. Not used for bios.
  --output FILE    The package. It appears whole or not at all.

info   Shows the header and the contents of a package, and whether it is whole.

verify Reports what a panel would do with a package, and whether it would do harm.
  --for MODEL      The panel's model.
  --runtime N      The version of its runtime.
  --oem NAME       Its OEM name.
  --bios N         The version of its settings program.
  --rate MB        How many megabytes it unpacks per second; the default is 10.
  --json           Prints one JSON object for programs.

The environment variable SOURCE_DATE_EPOCH sets the time of the packed files, in
seconds since 1970. The default is 2000-01-01.

Exit status: 0 done, or good; 1 not made, damaged, refused or dangerous; 2 wrong
usage, a file that cannot be read, or standard output that cannot be written.
)";
constexpr char version[] = "talmero-mkpackage " PANEL_VERSION "\n";

volatile std::sig_atomic_t caughtSignal = 0;

extern "C" void catchSignal(int signal)
{
    caughtSignal = signal;
}

bool shallStop()
{
    return caughtSignal != 0;
}

void say(std::FILE *stream, const QString &text)
{
    std::fprintf(stream, "talmero-mkpackage: %s\n", printable(text).constData());
}

/// Keeps the user's settings from changing the archive or the language of tar's messages.
void shieldTools()
{
    qunsetenv("TAR_OPTIONS");
    qunsetenv("GZIP");
    qputenv("LC_ALL", "C");
}

/// Signals that are ignored already, as under nohup, stay ignored.
void catchSignals()
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        if (std::signal(signal, catchSignal) == SIG_IGN) {
            std::signal(signal, SIG_IGN);
        }
    }
}

int make(const Options &options)
{
    const auto time = fileTime(qgetenv("SOURCE_DATE_EPOCH"));
    if (!time) {
        say(stderr, "SOURCE_DATE_EPOCH must be a number of seconds, up to the year 2242");
        return WrongUsage;
    }
    catchSignals();
    const QString error = makePackage(options, *time, shallStop);
    if (!error.isEmpty()) {
        say(stderr, error);
        return Failed;
    }
    for (const QString &warning : warningsFor(options.header, options.output)) {
        say(stderr, "note: " + warning);
    }
    return Done;
}

int sayUnreadable(const QString &path)
{
    say(stderr, "cannot read " + path);
    return WrongUsage;
}

int showInfo(const Options &options)
{
    QFile file;
    const PackageInfo info = openPlainFile(file, options.file) ? readPackage(file) : PackageInfo();
    if (!info.readable) {
        return sayUnreadable(options.file);
    }
    if (!info.header) {
        say(stderr,
            QString("%1 is not a package: it has only %2 bytes")
                .arg(options.file)
                .arg(info.fileSize));
        return Failed;
    }
    std::fputs(infoText(info).constData(), stdout);
    return isWhole(info) ? Done : Failed;
}

int verify(const Options &options)
{
    QFile file;
    const Verification found
        = openPlainFile(file, options.file) ? verifyPackage(file, options.verify) : Verification();
    if (!found.readable) {
        return sayUnreadable(options.file);
    }
    const QByteArray report
        = options.json ? jsonReport(found, options.verify, options.file) : textReport(found);
    std::fputs(report.constData(), stdout);
    return isGood(found) ? Done : Failed;
}

int run(const Options &options)
{
    if (!options.error.isEmpty()) {
        say(stderr, options.error + "; see talmero-mkpackage --help");
        return WrongUsage;
    }
    switch (options.task) {
    case Options::Task::Make:
        return make(options);
    case Options::Task::Info:
        return showInfo(options);
    case Options::Task::Verify:
        return verify(options);
    case Options::Task::Version:
        std::fputs(version, stdout);
        return Done;
    case Options::Task::Help:
        break;
    }
    std::fputs(usage, stdout);
    return Done;
}
} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    shieldTools();
    return ToolReport::endOfOutput("talmero-mkpackage",
                                   run(parseOptions(argumentTexts(argc, argv))), WrongUsage);
}
