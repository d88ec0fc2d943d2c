#include "arguments.h"

#include <QCommandLineParser>

namespace Doctor {
namespace {
constexpr double longestLimit = 60; // s

void readLimit(const QString &text, Arguments &arguments)
{
    bool isNumber = false;
    const double seconds = text.toDouble(&isNumber);
    if (!isNumber || !(seconds > 0 && seconds <= longestLimit)) {
        arguments.error = "--limit must be a number of seconds, up to 60";
        return;
    }
    arguments.limit = std::chrono::milliseconds(qMax(1, qRound(seconds * 1000)));
}
} // namespace

Arguments parseArguments(const QStringList &arguments)
{
    QCommandLineParser parser;
    const QCommandLineOption help(QStringList{"h", "help"});
    const QCommandLineOption version("version");
    const QCommandLineOption json("json");
    const QCommandLineOption limit("limit", QString(), "seconds");
    parser.addOptions({help, version, json, limit});
    Arguments parsed;
    if (!parser.parse(QStringList{"talmero-doctor"} + arguments)) {
        parsed.error = parser.errorText().section('\n', 0, 0);
    } else if (!parser.positionalArguments().isEmpty()) {
        parsed.error = QString("unknown argument: %1").arg(parser.positionalArguments().first());
    } else if (parser.isSet(limit)) {
        readLimit(parser.value(limit), parsed);
    }
    if (parser.isSet(help)) {
        parsed.task = Arguments::Task::Help;
    } else if (parser.isSet(version)) {
        parsed.task = Arguments::Task::Version;
    }
    parsed.isJson = parser.isSet(json);
    return parsed;
}
} // namespace Doctor
