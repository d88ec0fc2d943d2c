// Makes and inspects the package files that the panel installs from a stick.

#include "makepackage.h"
#include "options.h"
#include "packageinfo.h"
#include "report.h"
#include "system/debugtext.h"
#include "system/filecopy.h"
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

make   Packs what is in FOLDER. The same contents give the same bytes.
  --kind KIND      application (.kpc), firmware (.fmw) or bios (.mo, add-ons .pkg)
  --version N      0 to 4294967295. An application: the version of the runtime
                   that it is for. Firmware, bios: its own version.
  --target TEXT    At most 15 ASCII characters. An application: the panel model.
                   Firmware: the OEM name. bios: not used, may be left out.
  --output FILE    The package. Appears whole or not at all.

info   Shows the header and the contents of a package, and whether it is whole.

verify Tells what a panel will say of a package, and whether it would do harm there.
  --for MODEL      Asks for a panel of that model, and so do the next three:
  --runtime N      with the runtime of that version
  --oem NAME       with the OEM name
  --bios N         with the settings program of that version
  --rate MB        Megabytes a second that the panel unpacks; 10 if it is not given
  --json           Prints one JSON object for programs.

SOURCE_DATE_EPOCH is the time that the packed files get, in seconds since 1970;
2000-01-01 if it is not set.

Exit status: 0 done, or good; 1 not made, damaged, refused or dangerous; 2 wrong
usage, or not readable, or standard output takes no more.
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

/// What would change the archive, or what tar prints.
void shieldTools()
{
    qunsetenv("TAR_OPTIONS");
    qunsetenv("GZIP");
    qputenv("LC_ALL", "C");
}

/// A signal that is ignored, as below nohup, stays so.
void catchSignals()
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        if (std::signal(signal, catchSignal) == SIG_IGN) {
            std::signal(signal, SIG_IGN);
        }
    }
}

/// A disk may be full only when what was kept back is written.
int endOfOutput(int status)
{
    const bool written = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (!written) {
        say(stderr, "cannot write to standard output");
    }
    return written ? status : int(WrongUsage);
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
            QString("%1 is no package: it has only %2 bytes").arg(options.file).arg(info.fileSize));
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
    return endOfOutput(run(parseOptions(argumentTexts(argc, argv))));
}
