#include "answers.h"
#include "checks.h"

#include "system/fontnames.h"
#include "system/output/tooloutput.h"
#include "system/run/commandline.h"
#include "system/settings/settingsfile.h"
#include "system/settings/settingskeys.h"

#include <QRegularExpression>

namespace Doctor {
namespace {
constexpr QSize smallestScreen(800, 600); // px; upright 480x800
constexpr QSize smallestUpright(480, 800);
constexpr char brightnessLabel[] = "Brightness:";

QStringList connectedLines(const QString &outputs)
{
    return outputs.split('\n').filter(" connected ");
}

/// Whether the settings ask for a rotated display.
bool wantsRotation(const Facts &facts)
{
    SettingsMap settings;
    applySettingsText(facts.path(Paths::settingsFile).content, settings);
    const auto command = [](const QString &value) { return orientationCommand({}, value); };
    return command(settings.value(SettingsKeys::orientation)) != command({});
}

bool holds(const QSize &screen, const QSize &smallest)
{
    return screen.width() >= smallest.width() && screen.height() >= smallest.height();
}
} // namespace

Findings checkDisplay(const Facts &facts)
{
    const QString origin = facts.displayIsGuessed ? QString(" (DISPLAY is not set)") : QString();
    if (displayAnswers(facts)) {
        if (const auto bad = badAnswer(facts, Question::Server, "screen saving may not be set")) {
            return {*bad};
        }
        return {fine(QString("%1 answers%2").arg(facts.display, origin))};
    }
    const auto reason = facts.answer(Question::Server) ? badAnswer(facts, Question::Server, {})
                                                       : std::optional<Finding>();
    return {error(QString("%1 does not answer%2%3")
                      .arg(facts.display, origin, reason ? ": " + reason->text : QString()),
                  "run this in the panel's X session, or set DISPLAY and XAUTHORITY as it does")};
}

Findings checkOutput(const Facts &facts)
{
    const QString loss = "brightness and orientation are not set";
    if (const auto bad = badDisplayAnswer(facts, Question::Outputs, loss)) {
        return {*bad};
    }
    const QString outputs = answerText(facts, Question::Outputs);
    const QString name = connectedOutputName(outputs);
    if (name.isEmpty()) {
        return {
            error("\"xrandr -q\" names no connected output",
                  QString("check the driver and put X.org's xrandr first on PATH; until then %1")
                      .arg(loss))};
    }
    if (connectedLines(outputs).size() > 1) {
        return {warning(QString("several outputs are connected; the program uses the last one,  %1")
                            .arg(shortened(name)),
                        "switch the others off in the configuration of the X server")};
    }
    return {fine(shortened(name))};
}

Findings checkScreen(const Facts &facts)
{
    if (const auto bad = badDisplayAnswer(facts, Question::Outputs, "the screen is not known")) {
        return {*bad};
    }
    const auto screen = screenSize(facts);
    if (!screen) {
        return {warning("\"xrandr -q\" does not print the size of the screen",
                        "put X.org's xrandr first on PATH")};
    }
    const QString size = QString("%1x%2").arg(screen->width()).arg(screen->height());
    if (!holds(*screen, smallestScreen) && !holds(*screen, smallestUpright)) {
        return {warning(QString("%1 is smaller than the pages").arg(size),
                        "use a screen of 800x600 or, upright, of 480x800 pixels at least")};
    }
    return {fine(size)};
}

Findings checkRotation(const Facts &facts)
{
    const QString loss = "the orientation is not set";
    if (const auto bad = badDisplayAnswer(facts, Question::Outputs, loss)) {
        return {*bad};
    }
    static const QRegularExpression left("\\([a-z ]*\\bleft\\b[a-z ]*\\)");
    const QStringList lines = connectedLines(answerText(facts, Question::Outputs));
    if (!lines.isEmpty() && left.match(lines.last()).hasMatch()) {
        return {fine("the display can be turned")};
    }
    if (wantsRotation(facts)) {
        return {warning("the display cannot be turned, and the settings ask for it",
                        "use a driver with rotation, or store app.orientation=horizontal")};
    }
    return {fine("the display cannot be turned; the settings do not ask for it")};
}

Findings checkBrightness(const Facts &facts)
{
    const QString loss = "the brightness is not set";
    if (const auto bad = badDisplayAnswer(facts, Question::OutputDetails, loss)) {
        return {*bad};
    }
    if (!answerText(facts, Question::OutputDetails).contains(brightnessLabel)) {
        return {warning("the display has no brightness that xrandr could set",
                        "use a driver with gamma tables")};
    }
    return {fine("the display has a brightness")};
}

Findings checkFonts(const Facts &facts)
{
    if (facts.fontList.isEmpty()) {
        return {fine("not checked: fc-list is missing")};
    }
    if (const auto bad = badAnswer(facts, Question::Fonts, "texts may not fit")) {
        return {warning(bad->text, bad->advice)};
    }
    const QString families = answerText(facts, Question::Fonts);
    if (families.contains(QLatin1String(fontFamily))) {
        return {fine(QLatin1String(fontFamily))};
    }
    for (const char *substitute : fontSubstitutes) {
        if (families.contains(QLatin1String(substitute))) {
            return {fine(QString("%1 instead of %2")
                             .arg(QLatin1String(substitute), QLatin1String(fontFamily)))};
        }
    }
    return {warning("none of the program's fonts is installed: texts may not fit",
                    "install fonts-open-sans or fonts-dejavu-core")};
}

Findings checkTouch(const Facts &facts)
{
    const QString loss = "rescue mode cannot work";
    if (const auto bad = badDisplayAnswer(facts, Question::Devices, loss)) {
        return {*bad};
    }
    const QString device = touchDeviceName(answerText(facts, Question::Devices));
    if (device.isEmpty()) {
        return {error(QString("no input device has \"%1\" in its name").arg(touchControllerName),
                      "give the touch controller such a name with a udev or X configuration rule; "
                      "until then "
                          + loss)};
    }
    if (const auto bad = badDisplayAnswer(facts, Question::DeviceState, loss)) {
        return {*bad};
    }
    switch (firstButtonState(answerText(facts, Question::DeviceState))) {
    case TouchState::Unknown:
        return {error(QString("xinput does not print the state of the first button of \"%1\"")
                          .arg(shortened(device)),
                      "put X.org's xinput first on PATH; until then " + loss)};
    case TouchState::Down:
        return {warning(QString("\"%1\" reports a touch").arg(shortened(device)),
                        "take the finger off; if it still does so, the controller is stuck, and  "
                        "every start ends in rescue mode")};
    case TouchState::Up:
        break;
    }
    return {fine(shortened(device))};
}
} // namespace Doctor
