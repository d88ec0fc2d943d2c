#include "system/startup.h"

#include <QDebug>

#include <optional>

namespace {
constexpr char versionSwitch[] = "-v";

constexpr const char *scalingVariables[]
    = {"QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS", "QT_USE_PHYSICAL_DPI", "QT_FONT_DPI",
       "QT_STYLE_OVERRIDE"};

struct Variable
{
    const char *name;
    const char *value;
};

constexpr Variable ownVariables[] = {
    {"QT_ENABLE_HIGHDPI_SCALING", "0"},
    {"QT_NO_GLIB", "1"}, // GLib's loop writes to a descriptor for every posted event
    {"DBUS_SESSION_BUS_ADDRESS", "disabled:"}, // otherwise Qt looks for a screen reader
};

std::optional<QProcessEnvironment> given;
} // namespace

bool isVersionQuery(int argumentCount, const char *const *arguments)
{
    return argumentCount == 2
        && QString::fromLocal8Bit(arguments[1]).simplified().toLower()
        == QLatin1String(versionSwitch);
}

void printVersion()
{
    qDebug() << "Version: "
             << "Aug 31 2015"
             << "16:26:17";
}

void shieldFromEnvironment()
{
    given = QProcessEnvironment::systemEnvironment();
    for (const char *variable : scalingVariables) {
        qunsetenv(variable);
    }
    for (const Variable &variable : ownVariables) {
        qputenv(variable.name, variable.value);
    }
}

QProcessEnvironment givenEnvironment()
{
    return given.value_or(QProcessEnvironment::systemEnvironment());
}
