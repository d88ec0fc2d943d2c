#include "answers.h"
#include "checks.h"

#include "common/addresses.h"
#include "packages/filewalk.h"
#include "system/output/tooloutput.h"
#include "system/settings/displaychoices.h"
#include "system/settings/settingsfile.h"
#include "system/settings/settingskeys.h"

#include <algorithm>

namespace Doctor {
namespace {
constexpr char pageAdvice[] = "save the miscellaneous page";
constexpr char ethernetAdvice[] = "save the Ethernet page";

/// What is wrong with a setting; nothing if the program understands it.
using Wrong = std::optional<Finding>;

/// A setting that is in effect.
struct Setting
{
    QString key;
    QString value;
    int line;
};

using Judge = Wrong (*)(const Facts &facts, const QString &value);

struct KnownKey
{
    QString key;
    Judge judge;
};

/// @p text as the program reads a number.
std::optional<int> numberIn(const QString &text)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

Wrong judgeFlag(const Facts &, const QString &value)
{
    if (value == QLatin1String("1")) {
        return std::nullopt;
    }
    return warning("means enabled, as any text does", "store 1, or remove the line to disable");
}

Wrong judgeOrientation(const Facts &, const QString &value)
{
    const QString stored = value.toLower();
    if (stored == QLatin1String("horizontal") || stored == QLatin1String("vertical")) {
        return std::nullopt;
    }
    return warning("turns the display left, as any text but \"horizontal\" does",
                   "store horizontal or vertical");
}

Wrong judgeDelay(const Facts &, const QString &value)
{
    const int minutes = numberIn(value).value_or(0);
    if (minutes == 0) {
        return warning("switches screen saving off, as 0 and any text do",
                       "store a number of minutes, or remove the line for off");
    }
    if (std::none_of(std::begin(delayItems), std::end(delayItems),
                     [minutes](const DelayItem &item) { return item.minutes == minutes; })) {
        return warning("is a delay that the page does not offer, so the page shows another",
                       pageAdvice);
    }
    return std::nullopt;
}

bool hasTouchController(const Facts &facts)
{
    return !touchDeviceName(answerText(facts, Question::Devices)).isEmpty();
}

Wrong judgeBrightness(const Facts &facts, const QString &value)
{
    if (value == QString(QChar(rescueBrightness))) {
        return warning("is what rescue mode stores: the light is full", pageAdvice);
    }
    bool isNumber = false;
    const double factor = value.toDouble(&isNumber);
    if (isNumber && factor == 0) {
        const QString dark = "makes the panel dark at every start";
        if (!hasTouchController(facts)) {
            return error(dark + ", and without a touch controller there is no rescue",
                         "remove the line");
        }
        return warning(dark, "remove the line, or hold a finger on the screen for two seconds");
    }
    if (std::none_of(
            std::begin(brightnessItems), std::end(brightnessItems),
            [&value](const BrightnessItem &item) { return value == QLatin1String(item.factor); })) {
        return warning(
            QLatin1String(
                isNumber ? "is a brightness that the page does not offer"
                         : "is not a brightness: xrandr refuses it and the light does not change"),
            pageAdvice);
    }
    return std::nullopt;
}

Wrong judgeDebugLevel(const Facts &, const QString &value)
{
    if (numberIn(value)) {
        return std::nullopt;
    }
    return warning("counts as 0, because it is not a number", "store a number, or remove the line");
}

/// A size beyond the screen takes memory for pixels that nobody sees.
Wrong judgeScreenSize(const Facts &facts, const QString &value)
{
    const auto size = parseScreenSize(value);
    if (!size) {
        return warning("is not a size and is ignored",
                       "store a text like 800x600, or remove the line");
    }
    const auto screen = screenSize(facts);
    if (screen && (size->width() > screen->width() || size->height() > screen->height())) {
        return warning("is larger than the screen: buttons lie outside it, and memory is wasted",
                       "remove the line");
    }
    return std::nullopt;
}

Wrong judgeAddress(const Facts &, const QString &value)
{
    if (value.isEmpty()) {
        return error("is an empty fixed address: ifupdown refuses the whole file of interfaces",
                     QString(ethernetAdvice) + " with an address");
    }
    if (value == QLatin1String(dhcpValue) || ToolReport::isAddress(value)) {
        return std::nullopt;
    }
    return warning("counts as a fixed address but is not one", ethernetAdvice);
}

Wrong judgeMask(const Facts &, const QString &value)
{
    if (value.isEmpty()
        || ToolReport::isMask(value)) { // the page shows a default instead of an empty one
        return std::nullopt;
    }
    return warning("is not a netmask", "enter it again and save the Ethernet page");
}

Wrong judgeFolder(const Facts &facts, const QString &value)
{
    const QString folder = searchFolder(value);
    if (facts.path(folder).kind == PathFacts::Kind::Folder) {
        return std::nullopt;
    }
    return warning("is not a folder at the moment: nothing is found",
                   "mount it, or remove the line");
}

const QList<KnownKey> &knownKeys()
{
    // clang-format off
    static const QList<KnownKey> keys{
        {SettingsKeys::mouse,          judgeFlag},
        {SettingsKeys::buzzer,         judgeFlag},
        {SettingsKeys::orientation,    judgeOrientation},
        {SettingsKeys::screenSaving,   judgeDelay},
        {SettingsKeys::brightness,     judgeBrightness},
        {SettingsKeys::debugLevel,     judgeDebugLevel},
        {SettingsKeys::screenSize,     judgeScreenSize},
        {SettingsKeys::transferFolder, judgeFolder},
        {SettingsKeys::fontFolder,     judgeFolder},
        {ethernetKeys(0).address,      judgeAddress},
        {ethernetKeys(0).mask,         judgeMask},
        {ethernetKeys(1).address,      judgeAddress},
        {ethernetKeys(1).mask,         judgeMask},
    };
    // clang-format on
    return keys;
}

/// The program's keys start like this. Other keys may belong to something else and are kept.
constexpr QLatin1String ownPrefixes[]
    = {QLatin1String("app."), QLatin1String("bios."), QLatin1String("ethernet.")};

Wrong judgeKey(const QString &key)
{
    const QString meant = key.trimmed().toLower();
    for (const KnownKey &known : knownKeys()) {
        if (meant == known.key) {
            return warning(QString("is not the key \"%1\"").arg(known.key),
                           "write it in small letters, without blanks around the \"=\"");
        }
    }
    if (std::any_of(std::begin(ownPrefixes), std::end(ownPrefixes),
                    [&meant](QLatin1String prefix) { return meant.startsWith(prefix); })) {
        return warning("is a key that the program does not know", "correct or remove the line");
    }
    return std::nullopt;
}

Wrong judge(const Facts &facts, const Setting &setting)
{
    for (const KnownKey &known : knownKeys()) {
        if (setting.key == known.key) {
            // An empty value counts as unset, except for an address: saving an empty field stores
            // one.
            return setting.value.isEmpty() && known.judge != judgeAddress
                ? std::nullopt
                : known.judge(facts, setting.value);
        }
    }
    return judgeKey(setting.key);
}

/// The last line of each key, which is the one in effect, sorted by key. Adds the numbers of lines
/// that the program ignores to @p passedOver.
QList<Setting> settingsIn(const QList<QByteArrayView> &lines, QList<int> *passedOver)
{
    QMap<QString, Setting> settings;
    for (int number = 1; number <= int(lines.size()); ++number) {
        const QByteArrayView line = lines.at(number - 1);
        if (const auto entry = parseSettingsLine(line)) {
            settings.insert(entry->key, {entry->key, entry->value, number});
        } else if (const QByteArrayView text = line.trimmed();
                   !text.isEmpty() && !text.startsWith('#')) {
            passedOver->append(number);
        }
    }
    return settings.values();
}
} // namespace

Findings checkSettingsFile(const Facts &facts)
{
    const QString path = Paths::settingsFile;
    const PathFacts file = facts.path(path);
    if (file.kind == PathFacts::Kind::Missing) {
        return {warning(
            QString("there is no %1").arg(path),
            "ship one, even an empty one: the pickers of images and add-ons have no buttons "
            "without it")};
    }
    if (file.kind != PathFacts::Kind::File || !file.isReadable) {
        return {error(QString("%1 is not a readable file").arg(path),
                      "put a plain file in its place; until then nothing is stored")};
    }
    if (!file.isWritable) {
        return {error(QString("%1 cannot be written").arg(path),
                      "mount its disk for writing; until then nothing is stored")};
    }
    if (file.size > contentLimit) {
        return {warning(QString("%1 has %2 bytes, of which only the first are checked")
                            .arg(path)
                            .arg(file.size),
                        "replace it with a backup: settings are never that long")};
    }
    if (file.size == 0) {
        return {fine(QString("%1 is empty: every setting has its default").arg(path))};
    }
    return {fine(path)};
}

Findings checkSettings(const Facts &facts)
{
    Findings findings;
    QList<int> passedOver;
    const QByteArray content = facts.path(Paths::settingsFile).content;
    const QList<QByteArrayView> lines = settingsLines(content);
    const QList<Setting> settings = settingsIn(lines, &passedOver);
    for (const Setting &setting : settings) {
        if (auto wrong = judge(facts, setting)) {
            wrong->text = QString("line %1: %2 %3")
                              .arg(QString::number(setting.line),
                                   shortened(setting.key + '=' + setting.value), wrong->text);
            findings += *wrong;
        }
    }
    for (const int number : passedOver) {
        findings += warning(
            QString("line %1 is ignored: \"%2\"")
                .arg(QString::number(number), shortened(QString::fromUtf8(lines.at(number - 1)))),
            "write KEY=VALUE, or start a comment with \"#\"");
    }
    if (findings.isEmpty()) {
        findings += fine(QString("%1 keys, all understood").arg(settings.size()));
    }
    return findings;
}
} // namespace Doctor
