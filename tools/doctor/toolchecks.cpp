#include "answers.h"
#include "checks.h"

#include "system/output/tooloutput.h"

#include <QRegularExpression>

namespace Doctor {
namespace {
constexpr qint64 clockSlack = 60; // s

/// What the panel loses without a tool.
struct Need
{
    Tool tool;
    Level level;
    const char *loss;
};

// clang-format off
constexpr Need needs[] = {
    {Tool::Beep,     Level::Warning, "the buzzer tests of the factory window are silent"},
    {Tool::Date,     Level::Error,   "the clock cannot be set"},
    {Tool::Dhclient, Level::Error,   "a port on DHCP gets no address before the next boot"},
    {Tool::Du,       Level::Error,   "the status page does not show the size of the application"},
    {Tool::Hwclock,  Level::Error,   "the clock is lost when the panel is switched off"},
    {Tool::Ifconfig, Level::Error,   "fixed addresses are not set, and no address is shown"},
    {Tool::Mv,       Level::Warning, "the factory window cannot take the session aside"},
    {Tool::Rm,       Level::Error,   "old applications stay below new ones"},
    {Tool::Shell,    Level::Error,   "the HMI runtime does not start"},
    {Tool::Sleep,    Level::Warning, "there is no pause before the first window"},
    {Tool::Sync,     Level::Warning, "a new firmware may be lost with the power"},
    {Tool::Tar,      Level::Error,   "packages are not unpacked, and nobody is told"},
    {Tool::XCal,     Level::Error,   "the touch screen cannot be calibrated"},
    {Tool::Xinput,   Level::Error,   "rescue mode cannot work"},
    {Tool::Xrandr,   Level::Error,   "brightness and orientation are not set"},
    {Tool::Xset,     Level::Error,   "screen saving is not set"},
};
// clang-format on
static_assert(std::size(needs) == std::size(toolNames), "a tool without a check");

constexpr bool needsAreInOrder()
{
    for (size_t index = 0; index < std::size(needs); ++index) {
        if (size_t(needs[index].tool) != index) {
            return false;
        }
    }
    return true;
}
static_assert(needsAreInOrder());

Finding toolFinding(const QString &name, const QString &path, Level level, const QString &loss)
{
    if (!path.isEmpty()) {
        return about("tool " + name, fine(path));
    }
    return about("tool " + name,
                 {level,
                  "not on PATH or not executable",
                  QString("install it on the PATH of the panel's session; until then %1").arg(loss),
                  {}});
}
} // namespace

Findings checkUser(const Facts &facts)
{
    if (facts.user == 0) {
        return {fine("root, as the program")};
    }
    return {warning(QString("user %1; the program runs as root").arg(facts.user),
                    "run this as root: otherwise what root may read and write is a guess")};
}

Findings checkTools(const Facts &facts)
{
    Findings findings;
    for (const Need &need : needs) {
        findings += toolFinding(QLatin1String(toolNames[size_t(need.tool)]), facts.tool(need.tool),
                                need.level, QLatin1String(need.loss));
    }
    findings += toolFinding(gzipName, facts.gzip, Level::Error, "tar cannot unpack packages");
    return findings;
}

Findings checkTar(const Facts &facts)
{
    const auto &unpacked = facts.answer(Question::Unpack);
    if (!facts.tool(Tool::Tar).isEmpty() && !unpacked) {
        return {error("a sample package was not unpacked: there is no space for temporary files",
                      QString("free some space in %1").arg(facts.temporaryFolder))};
    }
    const QString loss = "packages are not installed, and nobody is told";
    if (const auto bad = badAnswer(facts, Question::Unpack, loss)) {
        return {*bad};
    }
    if (facts.unpacked != facts.sample) {
        return {error("tar did not unpack a sample package",
                      QString("put GNU tar and gzip first on PATH; until then %1").arg(loss))};
    }
    if (!answerText(facts, Question::TarVersion).contains(QLatin1String("GNU tar"))) {
        return {warning("tar unpacks a sample package but is not GNU tar",
                        "install GNU tar: it keeps packages from writing outside their folder")};
    }
    return {fine("GNU tar unpacks a sample package")};
}

Findings checkDu(const Facts &facts)
{
    if (const auto bad
        = badAnswer(facts, Question::ApplicationSize,
                    "the application's size is not shown; a du that hangs holds up every start")) {
        return {*bad};
    }
    const QString errors
        = QString::fromLocal8Bit(facts.answer(Question::ApplicationSize)->answer.errors);
    if (!errors.isEmpty()) { // the program takes any error text for a failure
        return {error(QString("du complains: %1").arg(shortened(errors)),
                      "fix what it names; until then the application's size is not shown")};
    }
    static const QRegularExpression plausible("^[0-9][0-9.,]*[A-Za-z]{0,2}$");
    const QString total = diskUsageTotal(answerText(facts, Question::ApplicationSize));
    if (!plausible.match(total).hasMatch()) {
        return {
            error(QString("du prints no size that the program reads: \"%1\"").arg(shortened(total)),
                  "put GNU's or BusyBox's du first on PATH")};
    }
    return {fine(QString("the application takes %1").arg(total))};
}

Findings checkDate(const Facts &facts)
{
    if (const auto bad = badAnswer(facts, Question::Time, "the clock may not be set")) {
        return {*bad};
    }
    bool isNumber = false;
    const qint64 time = answerText(facts, Question::Time).trimmed().toLongLong(&isNumber);
    if (!isNumber || qAbs(time - facts.time) > clockSlack) {
        return {error(QString("\"date +%s\" prints \"%1\", which is not the system's time")
                          .arg(shortened(answerText(facts, Question::Time))),
                      "put GNU's or BusyBox's date first on PATH")};
    }
    return {fine("date prints the system's time")};
}

Findings checkSleep(const Facts &facts)
{
    if (const auto bad = badAnswer(facts, Question::ShortPause, "serial tests may fail")) {
        return {warning(bad->text, bad->advice)};
    }
    return {fine("sleep accepts fractions of a second")};
}
} // namespace Doctor
