#include "options.h"

#include "packages/packagetypes.h"
#include "system/textcodec.h"

#include <QCommandLineParser>

#include <algorithm>
#include <limits>
#include <span>

namespace MkPackage {
namespace {
constexpr qint64 defaultFileTime = 946684800;            // 2000-01-01 00:00:00 UTC
constexpr qint64 latestFileTime = (qint64(1) << 33) - 1; // eleven octal digits of a tar header
constexpr QLatin1String targetOption("target");
constexpr QLatin1String verifyOptions[]
    = {QLatin1String("for"), QLatin1String("runtime"), QLatin1String("oem"), QLatin1String("bios"),
       QLatin1String("rate")};
constexpr int highestRate = 1'000'000; // MB/s
constexpr QLatin1String makeOptions[]
    = {QLatin1String("kind"), QLatin1String("version"), targetOption, QLatin1String("output")};

struct Kind
{
    PackageKind kind;
    const char *name;
    const char *target; ///< what its target names; null if it is not used
};

// clang-format off
constexpr Kind kinds[] = {
    {PackageKind::Application, "application", "panel model"},
    {PackageKind::Firmware,    "firmware",    "OEM name"},
    {PackageKind::BiosImage,   "bios",        nullptr},
};
// clang-format on

const Kind *findKind(PackageKind kind)
{
    const auto *found = std::find_if(std::begin(kinds), std::end(kinds),
                                     [kind](const Kind &known) { return known.kind == kind; });
    return found != std::end(kinds) ? found : nullptr;
}

std::optional<PackageKind> kindFromName(const QString &name)
{
    const auto *found
        = std::find_if(std::begin(kinds), std::end(kinds),
                       [&name](const Kind &known) { return name == QLatin1String(known.name); });
    return found != std::end(kinds) ? std::optional(found->kind) : std::nullopt;
}

std::optional<qint64> parseNumber(const QString &text)
{
    const bool digits
        = std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    bool fits = false;
    const qint64 number = text.toLongLong(&fits);
    return digits && fits ? std::optional(number) : std::nullopt;
}

QString targetError(const Kind &kind, const QString &target)
{
    if (target.isEmpty() && kind.target != nullptr) {
        return QString("--target must be the %1 that the package is for")
            .arg(QLatin1String(kind.target));
    }
    if (!isPrintableAscii(target)) {
        return "--target must be printable ASCII";
    }
    if (target.size() > longestPackageTarget) {
        return QString("--target has %1 characters; at most %2 fit")
            .arg(target.size())
            .arg(longestPackageTarget);
    }
    return {};
}

/// Reads the options of the header. Result: what is wrong; empty if nothing is.
QString readHeader(const QCommandLineParser &parser, PackageHeader &header)
{
    const auto kind = kindFromName(parser.value("kind"));
    if (!kind) {
        return "--kind must be application, firmware or bios";
    }
    const auto version = parseNumber(parser.value("version"));
    if (!version || *version > std::numeric_limits<quint32>::max()) {
        return "--version must be a number from 0 to 4294967295";
    }
    if (*kind == PackageKind::BiosImage && *version == 0) {
        return "a panel does not install a bios of version 0";
    }
    header = {*kind, quint32(*version), parser.value(targetOption)};
    return targetError(*findKind(*kind), header.target);
}

/// Result: an error if an option is given twice; empty otherwise.
QString findTwice(const QCommandLineParser &parser)
{
    const QStringList given = parser.optionNames();
    for (const QString &name : given) {
        if (given.count(name) > 1) {
            return QString("--%1 is given twice").arg(name);
        }
    }
    return {};
}

QString readMakeOptions(const QCommandLineParser &parser, Options &options)
{
    QString twice = findTwice(parser);
    if (!twice.isEmpty()) {
        return twice;
    }
    for (const QLatin1String name : makeOptions) {
        if (!parser.isSet(name) && name != targetOption) {
            return QString("--%1 is missing").arg(name);
        }
    }
    QString wrong = readHeader(parser, options.header);
    if (!wrong.isEmpty()) {
        return wrong;
    }
    options.output = parser.value("output");
    options.folder = parser.positionalArguments().value(0);
    if (options.output.isEmpty()) {
        return "--output is empty";
    }
    return parser.positionalArguments().size() == 1 && !options.folder.isEmpty()
        ? QString()
        : QString("make takes one folder");
}

using OptionsReader = QString (*)(const QCommandLineParser &parser, Options &options);

/// Reads the command line of @p task. The options @p names take values.
Options parseTask(QCommandLineParser &parser, Options::Task task,
                  std::span<const QLatin1String> names, const QStringList &arguments,
                  OptionsReader read)
{
    for (const QLatin1String name : names) {
        parser.addOption(QCommandLineOption(QString(name), QString(), "value"));
    }
    Options options;
    options.task = task;
    options.error
        = parser.parse(arguments) ? read(parser, options) : parser.errorText().section('\n', 0, 0);
    return options;
}

Options parseMake(const QStringList &arguments)
{
    QCommandLineParser parser;
    return parseTask(parser, Options::Task::Make, makeOptions, arguments, readMakeOptions);
}

Options parseInfo(const QStringList &arguments)
{
    QCommandLineParser parser;
    Options options;
    options.task = Options::Task::Info;
    if (!parser.parse(arguments)) {
        options.error = parser.errorText().section('\n', 0, 0);
    } else if (parser.positionalArguments().size() != 1) {
        options.error = "info takes one file";
    }
    options.file = parser.positionalArguments().value(0);
    return options;
}

/// Reads the option @p name into @p version. Result: what is wrong; empty if nothing is.
QString readVersion(const QCommandLineParser &parser, const QString &name,
                    std::optional<quint32> &version)
{
    const auto number = parseNumber(parser.value(name));
    if (!parser.isSet(name)) {
        return {};
    }
    if (!number || *number > std::numeric_limits<quint32>::max()) {
        return QString("--%1 must be a number from 0 to 4294967295").arg(name);
    }
    version = quint32(*number);
    return {};
}

std::optional<QString> readText(const QCommandLineParser &parser, const QString &name)
{
    return parser.isSet(name) ? std::optional(parser.value(name)) : std::nullopt;
}

QString readVerifyOptions(const QCommandLineParser &parser, Options &options)
{
    PanelFacts &panel = options.verify.panel;
    for (const QString &wrong :
         {findTwice(parser), readVersion(parser, "runtime", panel.runtimeVersion),
          readVersion(parser, "bios", panel.biosVersion)}) {
        if (!wrong.isEmpty()) {
            return wrong;
        }
    }
    panel.model = readText(parser, "for");
    panel.oem = readText(parser, "oem");
    options.json = parser.isSet("json");
    if (parser.isSet("rate")) {
        const auto rate = parseNumber(parser.value("rate"));
        if (!rate || *rate < 1 || *rate > highestRate) {
            return "--rate must be a number of megabytes a second";
        }
        options.verify.rate = int(*rate);
    }
    options.file = parser.positionalArguments().value(0);
    options.verify.name = options.file;
    return parser.positionalArguments().size() == 1 ? QString() : QString("verify takes one file");
}

Options parseVerify(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.addOption(QCommandLineOption("json"));
    return parseTask(parser, Options::Task::Verify, verifyOptions, arguments, readVerifyOptions);
}

Options withoutCommand(Options::Task task, const QString &error = {})
{
    Options options;
    options.task = task;
    options.error = error;
    return options;
}
} // namespace

Options parseOptions(const QStringList &arguments)
{
    const QString command = arguments.value(0);
    if (arguments.contains("--help") || arguments.contains("-h")) {
        return withoutCommand(Options::Task::Help);
    }
    if (command == QLatin1String("make")) {
        return parseMake(arguments);
    }
    if (command == QLatin1String("info")) {
        return parseInfo(arguments);
    }
    if (command == QLatin1String("verify")) {
        return parseVerify(arguments);
    }
    if (command == QLatin1String("--version") && arguments.size() == 1) {
        return withoutCommand(Options::Task::Version);
    }
    return withoutCommand(Options::Task::Help,
                          command.isEmpty() ? QString("no command given")
                                            : QString("unknown command: %1").arg(command));
}

QStringList warningsFor(const PackageHeader &header, const QString &output)
{
    QStringList warnings;
    if (!isListedAs(header.kind, output)) {
        warnings += QString("a panel lists packages of this kind only with the extension %1")
                        .arg(packageExtensions(header.kind).join(" or "));
    }
    if (header.kind == PackageKind::Firmware
        && header.version > quint32(std::numeric_limits<qint32>::max())) {
        warnings += QString("a panel shows this version as %1").arg(qint32(header.version));
    }
    return warnings;
}

bool isPrintableAscii(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u' ' && c <= u'~'; });
}

QString kindName(PackageKind kind)
{
    const Kind *known = findKind(kind);
    return known != nullptr ? QString(QLatin1String(known->name)) : QString();
}

std::optional<qint64> fileTime(const QByteArray &value)
{
    if (value.isEmpty()) {
        return defaultFileTime;
    }
    const auto time = parseNumber(QString::fromLatin1(value));
    return time && *time <= latestFileTime ? time : std::nullopt;
}
} // namespace MkPackage
