#include "system/startup.h"

#include <QDebug>

namespace {
constexpr char versionSwitch[] = "-v";

constexpr const char *scalingVariables[]
    = {"QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS", "QT_USE_PHYSICAL_DPI", "QT_FONT_DPI",
       "QT_STYLE_OVERRIDE"};
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
    for (const char *variable : scalingVariables) {
        qunsetenv(variable);
    }
    qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");
}
