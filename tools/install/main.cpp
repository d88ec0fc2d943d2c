// Installs a package on the panel from the command line.

#include "common/output.h"
#include "mkpackage/report.h"
#include "outcome.h"
#include "packages/packagecheck.h"
#include "packages/packageinstaller.h"
#include "system/debugtext.h"
#include "system/files/filecopy.h"
#include "system/files/versionfiles.h"
#include "system/textcodec.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <unistd.h>

#include <cstdio>

using namespace Install;
using ToolReport::endOfOutput;
using ToolReport::print;

namespace {
constexpr char usage[] =
    R"(Usage: talmero-install [--dry-run] [--json] FILE
       talmero-install --help | --version

Installs a package on this panel, as the settings program does with a stick. The
end of the file's name chooses the page: .kpc and .fmw File Transfer, .mo and
.pkg the update of the settings program.

  --dry-run  Writes nothing. Says whether the package would be installed, and what
             talmero-mkpackage verify finds in it.
  --json     Prints one JSON object for programs.
  --help     Shows this text.
  --version  Shows the version.

Exit status: 0 installed, or would be; 1 cannot be read or stored; 2 for another
version of the runtime; 3 for another panel model; 4 for another OEM; 5 not a bios
package; 6 the installed bios is as new; 7 no room for the archive of a bios;
8 neither an application nor a firmware; 9 would be installed and do harm (only
with --dry-run); 64 wrong usage; 74 standard output cannot be written; 75 another
program is installing a package; 77 not root.
)";
constexpr char version[] = "talmero-install " PANEL_VERSION "\n";

struct Options
{
    QString file;
    Page page = Page::FileTransfer;
    bool dryRun = false;
    bool json = false;
};

void say(const QString &text)
{
    std::fprintf(stderr, "talmero-install: %s\n", printable(text).constData());
}

std::optional<PackageHeader> headerOf(QFile &file)
{
    auto header = parsePackageHeader(file.read(packageHeaderSize));
    file.seek(0);
    return header;
}

/// What the page would do with a package that has @p header.
Outcome check(Page page, const std::optional<PackageHeader> &header)
{
    if (page == Page::BiosUpdate) {
        return outcomeOf(page,
                         header ? checkBiosPackage(*header, getCurrentBIOSVersion()) : NoBiosImage);
    }
    if (!header) {
        return outcomeOf(page, OpenFileError);
    }
    return isUnknownKind(page, *header)
        ? unknownKind()
        : outcomeOf(page,
                    checkPackage(*header,
                                 {getCurrentRuntimeVersion(), getCurrentRuntimOEM(),
                                  getCurrentRuntimeModel()}));
}

Outcome install(const Options &options)
{
    QFile file;
    const auto header = openPlainFile(file, options.file) ? headerOf(file) : std::nullopt;
    if (header && isUnknownKind(options.page, *header)) {
        return unknownKind();
    }
    const int result = options.page == Page::BiosUpdate ? installBIOSPackage(options.file)
                                                        : installPackage(options.file);
    return outcomeOf(options.page, result);
}

MkPackage::VerifyTask verifyTask(const QString &file)
{
    return {.name = file,
            .panel = {.model = getCurrentRuntimeModel().value(0),
                      .oem = getCurrentRuntimOEM(),
                      .runtimeVersion = versionNumber(getCurrentRuntimeVersion()),
                      .biosVersion = versionNumber(getCurrentBIOSVersion())}};
}

QByteArray jsonText(const Options &options, const Outcome &outcome, QJsonObject more = {})
{
    more.insert("file", QString::fromLatin1(printable(options.file)));
    more.insert("dryRun", options.dryRun);
    more.insert("status", outcome.status);
    more.insert("text", outcome.text);
    return QJsonDocument(more).toJson(QJsonDocument::Compact) + '\n';
}

/// Reports an installation. Result: its exit status.
int report(const Options &options, const Outcome &outcome)
{
    if (options.json) {
        print(jsonText(options, outcome));
    } else if (outcome.status == Done) {
        print(printable(options.file) + ": " + outcome.text.toLatin1() + '\n');
    } else {
        say(options.file + ": " + outcome.text);
    }
    return outcome.status;
}

int dryRun(const Options &options)
{
    QFile file;
    const bool isOpen = openPlainFile(file, options.file);
    Outcome outcome = check(options.page, isOpen ? headerOf(file) : std::nullopt);
    if (!isOpen) {
        return report(options, outcome);
    }
    const MkPackage::VerifyTask task = verifyTask(options.file);
    const MkPackage::Verification found = MkPackage::verifyPackage(file, task);
    if (outcome.status == Done) {
        outcome = MkPackage::isGood(found) ? Outcome{Done, "would be installed"}
                                           : Outcome{Harmful, "would be installed and do harm"};
    }
    if (options.json) {
        print(jsonText(options, outcome,
                       {{"verification", MkPackage::reportObject(found, task, options.file)}}));
    } else {
        print(MkPackage::findingsText(found) + printable(options.file) + ": "
              + outcome.text.toLatin1() + '\n');
    }
    return outcome.status;
}

int refuse(const QString &reason)
{
    say(reason + "; see talmero-install --help");
    return EX_USAGE;
}

int runWith(const Options &options)
{
    if (options.dryRun) {
        return dryRun(options);
    }
    if (geteuid() != 0) {
        say("only root can install a package");
        return NoRoot;
    }
    return report(options, install(options));
}

int run(const QStringList &arguments)
{
    if (ToolReport::answerAboutTool(arguments, usage, version)) {
        return Done;
    }
    QCommandLineParser parser;
    parser.addOption(QCommandLineOption("dry-run"));
    parser.addOption(QCommandLineOption("json"));
    if (!parser.parse(QStringList{"talmero-install"} + arguments)) {
        return refuse(parser.errorText().section('\n', 0, 0));
    }
    if (parser.positionalArguments().size() != 1) {
        return refuse("one file is installed at a time");
    }
    const QString file = parser.positionalArguments().first();
    const auto page = pageFor(file);
    return page ? runWith({file, *page, parser.isSet("dry-run"), parser.isSet("json")})
                : refuse(file + ": no page of a panel lists a file of this name");
}
} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    // An archive that is left in /tmp has the name that the page gives it. The guard and
    // talmero-doctor look for that.
    QCoreApplication::setApplicationName("talmero-bios");
    return endOfOutput("talmero-install", run(argumentTexts(argc, argv)));
}
