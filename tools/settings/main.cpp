// Prints a setting of the panel for scripts, as the settings program reads it.

#include "common/output.h"
#include "system/debugtext.h"
#include "system/paths.h"
#include "system/settings/settingsfile.h"
#include "system/textcodec.h"

#include <cstdio>

namespace {
constexpr char usage[] =
    R"(Usage: talmero-settings get KEY
       talmero-settings --help | --version

Prints the value that the settings program reads for KEY from
/opt/talmero/bios/bios.ini.

  --help     Shows this text.
  --version  Shows the version.

Exit status: 0 the key has a value; 1 it has none; 64 wrong usage; 74 standard
output cannot be written.
)";
constexpr char version[] = "talmero-settings " PANEL_VERSION "\n";

/// For wrong usage and for lost output see sysexits.h(3head).
enum ExitStatus : int { HasValue = 0, HasNoValue = 1 };

int printValue(const QString &key)
{
    SettingsMap settings;
    readSettingsFile(Paths::settingsFile, settings);
    const auto found = settings.constFind(key);
    if (found == settings.cend()) {
        return HasNoValue;
    }
    const QByteArray line = bytesFromText(*found) + '\n';
    std::fwrite(line.constData(), 1, size_t(line.size()), stdout);
    return HasValue;
}

int refuse(const QByteArray &reason)
{
    std::fprintf(stderr, "talmero-settings: %s; see talmero-settings --help\n", reason.constData());
    return EX_USAGE;
}

int run(const QStringList &arguments)
{
    if (arguments == QStringList{"--help"}) {
        std::fputs(usage, stdout);
        return 0;
    }
    if (arguments == QStringList{"--version"}) {
        std::fputs(version, stdout);
        return 0;
    }
    if (arguments.value(0) != QLatin1String("get")) {
        return refuse(arguments.isEmpty() ? "a command is missing"
                                          : "unknown command: " + printable(arguments.first()));
    }
    if (arguments.size() != 2) {
        return refuse("\"get\" needs one key");
    }
    return printValue(arguments.at(1));
}
} // namespace

int main(int argc, char *argv[])
{
    return ToolReport::endOfOutput("talmero-settings", run(argumentTexts(argc, argv)));
}
