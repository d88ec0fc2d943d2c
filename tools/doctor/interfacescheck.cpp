#include "answers.h"
#include "checks.h"

#include "system/settings/settingskeys.h"

namespace Doctor {
namespace {
constexpr char copyAdvice[]
    = "save the Ethernet page with whole addresses, or put back a copy of the file";

/// The words of a line of the file; none for a comment.
QStringList wordsOf(const QString &line)
{
    const QString simple = line.simplified();
    return simple.startsWith('#') ? QStringList() : simple.split(' ', Qt::SkipEmptyParts);
}

/// Lines that the program's next save would remove: everything but the loopback and the two ports.
QStringList foreignLines(const QString &text)
{
    const QStringList ours{"lo", ethernetKeys(0).interface, ethernetKeys(1).interface};
    QStringList foreign;
    for (const QString &line : text.split('\n')) {
        const QStringList words = wordsOf(line);
        const QString keyword = words.value(0);
        const bool isOurs = keyword.isEmpty() || keyword == QLatin1String("address")
            || keyword == QLatin1String("netmask")
            || ((keyword == QLatin1String("auto") || keyword == QLatin1String("iface"))
                && ours.contains(words.value(1)));
        if (!isOurs) {
            foreign += line.simplified();
        }
    }
    return foreign;
}

/// An option without a value; it makes ifupdown refuse the whole file.
QString emptyOption(const QString &text)
{
    for (const QString &line : text.split('\n')) {
        const QStringList words = wordsOf(line);
        if (words.size() == 1) {
            return words.first();
        }
    }
    return {};
}

/// What ifupdown itself says about the file, as far as it can be asked.
Finding checkSyntax(const Facts &facts, const QString &text)
{
    const QString loss = "no port comes up at the next boot";
    const QString empty = emptyOption(text);
    if (!empty.isEmpty()) {
        return error(QString("\"%1\" has no value in %2: ifupdown refuses the whole file")
                         .arg(shortened(empty), QString(Paths::interfacesFile)),
                     QString(copyAdvice) + "; until then " + loss);
    }
    if (facts.ifquery.isEmpty()) {
        return warning("ifquery is missing: whether ifupdown accepts the file is unknown",
                       "install ifupdown: it reads this file at boot");
    }
    if (auto bad = badAnswer(facts, Question::InterfacesFile, loss)) {
        bad->advice = QString(copyAdvice) + "; until then " + loss;
        return *bad;
    }
    return fine(QString("ifupdown accepts %1").arg(Paths::interfacesFile));
}
} // namespace

Findings checkInterfacesFile(const Facts &facts)
{
    const PathFacts file = facts.path(Paths::interfacesFile);
    if (file.kind == PathFacts::Kind::Missing) {
        return {error(QString("there is no %1").arg(Paths::interfacesFile),
                      "install ifupdown, or save the Ethernet page if its folder is there; until "
                      "then no port comes up at boot")};
    }
    if (file.kind != PathFacts::Kind::File || !file.isReadable) {
        return {
            error(QString("%1 cannot be read").arg(Paths::interfacesFile), "make it a plain file")};
    }
    const QString text = QString::fromUtf8(file.content);
    Findings findings{checkSyntax(facts, text)};
    const QStringList foreign = foreignLines(text);
    if (!foreign.isEmpty()) {
        findings += warning(QString("the next save of the Ethernet page removes \"%1\"%2")
                                .arg(shortened(foreign.first()),
                                     foreign.size() > 1
                                         ? QString(" and %1 more lines").arg(foreign.size() - 1)
                                         : QString()),
                            "move what it configures to a unit of its own");
    }
    return findings;
}
} // namespace Doctor
