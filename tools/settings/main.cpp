// Reads and writes the panel's settings for scripts, as the settings program does.

#include "common/output.h"
#include "rules.h"
#include "settings.h"
#include "system/debugtext.h"
#include "system/textcodec.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <cstdio>

using namespace Settings;
using ToolReport::print;

namespace {
constexpr char usage[] =
    R"(Usage: talmero-settings get KEY
       talmero-settings set [--force] [--dry-run] KEY VALUE
       talmero-settings unset [--force] [--dry-run] KEY
       talmero-settings list [--json]
       talmero-settings apply [--force]
       talmero-settings --help | --version

Reads and writes the panel's settings, /opt/talmero/bios/bios.ini, as the settings
program does.

  get        Prints the value of KEY.
  set        Stores VALUE. Refuses a key or a value that no page could have stored.
             Prints "changed" or "unchanged".
  unset      Removes KEY. Prints "changed" or "unchanged".
  list       Prints all keys with their values.
  apply      Makes what was set count: restarts the session, which ends the HMI
             runtime, and writes /etc/network/interfaces for the next boot. Until
             then, the settings program may overwrite what was set.
  --force    set, unset: any key and any value that the file can hold.
             apply: replaces an interfaces file that the program has not written.
  --dry-run  Writes nothing; prints and refuses the same.
  --json     Prints one JSON object for programs.
  --help     Shows this text.
  --version  Shows the version.

Exit status: 0 done; 1 the key has no value; 2 refused; 64 wrong usage; 66 the
file cannot be read; 69 the session cannot be restarted; 73 the file cannot be
written; 74 standard output cannot be written.
)";
constexpr char version[] = "talmero-settings " PANEL_VERSION "\n";

constexpr char forceOption[] = "--force";
constexpr char dryRunOption[] = "--dry-run";
constexpr char jsonOption[] = "--json";

/// Others are from sysexits.h(3head).
enum ExitStatus : int { Done = 0, HasNoValue = 1, Refused = 2 };

/// What follows the command.
struct Arguments
{
    QStringList texts;
    bool force = false;
    bool dryRun = false;
    bool json = false;
};

void say(const QString &text)
{
    std::fprintf(stderr, "talmero-settings: %s\n", printable(text).constData());
}

int printValue(const SettingsMap &settings, const Arguments &arguments)
{
    const auto found = settings.constFind(arguments.texts.first());
    if (found == settings.cend()) {
        return HasNoValue;
    }
    print(bytesFromText(*found) + '\n');
    return Done;
}

int list(const SettingsMap &settings, const Arguments &arguments)
{
    if (!arguments.json) {
        print(formatSettings(settings));
        return Done;
    }
    QJsonObject object;
    for (auto entry = settings.cbegin(); entry != settings.cend(); ++entry) {
        object.insert(entry.key(), *entry);
    }
    print(QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n');
    return Done;
}

/// Stores @p changed unless it is the same as @p before.
int store(const SettingsMap &before, const SettingsMap &changed, bool dryRun)
{
    if (changed == before) {
        print("unchanged\n");
        return Done;
    }
    if (!dryRun && !storeSettings(changed)) {
        say("the settings cannot be written");
        return EX_CANTCREAT;
    }
    print("changed\n");
    return Done;
}

int refuse(const QString &key, const QString &error)
{
    say(key + ": " + error);
    return Refused;
}

int set(const SettingsMap &settings, const Arguments &arguments)
{
    const QString &key = arguments.texts.at(0);
    const QString &value = arguments.texts.at(1);
    QString error = formatError(key, value);
    if (error.isEmpty() && !arguments.force) {
        error = pageError(key, value);
    }
    if (!error.isEmpty()) {
        return refuse(key, error);
    }
    SettingsMap changed = settings;
    changed.insert(key, value);
    return store(settings, changed, arguments.dryRun);
}

int unset(const SettingsMap &settings, const Arguments &arguments)
{
    const QString &key = arguments.texts.first();
    const QString error = arguments.force ? QString() : removalError(key);
    if (!error.isEmpty()) {
        return refuse(key, error);
    }
    SettingsMap changed = settings;
    changed.remove(key);
    return store(settings, changed, arguments.dryRun);
}

int apply(const SettingsMap &settings, const Arguments &arguments)
{
    const auto done = applySettings(settings, arguments.force);
    if (!done) {
        say("the session cannot be restarted");
        return EX_UNAVAILABLE;
    }
    print(*done);
    return Done;
}

struct Command
{
    const char *name;
    int (*run)(const SettingsMap &settings, const Arguments &arguments);
    qsizetype texts; ///< number of arguments that are no options
    std::array<const char *, 2> options;
};

// clang-format off
constexpr Command commands[] = {
    {"get",   printValue, 1, {}},
    {"set",   set,        2, {forceOption, dryRunOption}},
    {"unset", unset,      1, {forceOption, dryRunOption}},
    {"list",  list,       0, {jsonOption}},
    {"apply", apply,      0, {forceOption}},
};
// clang-format on

int refuseUsage(const QString &reason)
{
    say(reason + "; see talmero-settings --help");
    return EX_USAGE;
}

bool isOption(const Command &command, const QString &text)
{
    return std::any_of(command.options.begin(), command.options.end(), [&text](const char *option) {
        return option != nullptr && text == QLatin1String(option);
    });
}

/// Runs @p command with what follows it. Its options come first, so that a value may look like one.
int runCommand(const Command &command, QStringList texts)
{
    QStringList options;
    while (!texts.isEmpty() && isOption(command, texts.first())) {
        options += texts.takeFirst();
    }
    if (texts.size() != command.texts) {
        return refuseUsage(QString("\"%1\" takes %2 arguments, not %3")
                               .arg(QLatin1String(command.name))
                               .arg(command.texts)
                               .arg(texts.size()));
    }
    const auto settings = readSettings();
    if (!settings) {
        say("the settings cannot be read");
        return EX_NOINPUT;
    }
    return command.run(*settings,
                       {.texts = texts,
                        .force = options.contains(forceOption),
                        .dryRun = options.contains(dryRunOption),
                        .json = options.contains(jsonOption)});
}

int run(const QStringList &arguments)
{
    if (ToolReport::answerAboutTool(arguments, usage, version)) {
        return Done;
    }
    for (const Command &command : commands) {
        if (arguments.value(0) == QLatin1String(command.name)) {
            return runCommand(command, arguments.mid(1));
        }
    }
    return refuseUsage(arguments.isEmpty() ? "a command is missing"
                                           : "unknown command: " + arguments.first());
}
} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    return ToolReport::endOfOutput("talmero-settings", run(argumentTexts(argc, argv)));
}
