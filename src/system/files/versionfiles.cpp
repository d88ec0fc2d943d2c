#include "system/files/versionfiles.h"

#include "system/paths.h"
#include "system/textcodec.h"

#include <QFile>

namespace {
struct ShortCode
{
    const char *model;
    const char *code;
};

constexpr ShortCode shortCodes[] = {
    {"RV-K21T", "K21T"},
    {"RV-K25T", "K25T"},
};
} // namespace

QString getCurrentRuntimeVersion()
{
    return firstLineOfFile(Paths::runtimeVersionFile);
}

QString getCurrentRuntimOEM()
{
    return firstLineOfFile(Paths::runtimeOemFile);
}

QString getCurrentBIOSVersion()
{
    return firstLineOfFile(Paths::biosVersionFile);
}

QStringList getCurrentRuntimeModel()
{
    return modelNames(firstLineOfFile(Paths::modelFile));
}

void setCurrentRuntimeVersion(int version)
{
    writeTextFile(Paths::runtimeVersionFile, QString::number(version));
}

void setCurrentBIOSVersion(int version)
{
    writeTextFile(Paths::biosVersionFile, QString::number(version));
}

void setCurrentRuntimeModel(const QString &model)
{
    writeTextFile(Paths::modelFile, model);
}

void setCurrentRuntimeOEM(const QString &oem)
{
    writeTextFile(Paths::runtimeOemFile, oem);
}

QString firstLineOfFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return firstLineOf(file.readLine());
}

QString firstLineOf(const QByteArray &text)
{
    const qsizetype end = text.indexOf('\n');
    QByteArray line = end < 0 ? text : text.left(end);
    if (end >= 0 && line.endsWith('\r')) {
        line.chop(1);
    }
    return textFromBytes(line);
}

void writeTextFile(const QString &path, const QString &text)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
        file.write(bytesFromText(text));
    }
}

QStringList modelNames(const QString &model)
{
    QStringList names{model};
    for (const ShortCode &shortCode : shortCodes) {
        if (model == QLatin1String(shortCode.model)) {
            names += QLatin1String(shortCode.code);
        }
    }
    return names;
}
