#include "samplepackage.h"

#include "packages/packageheader.h"
#include "system/files/versionfiles.h"
#include "system/run/process.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <random>

namespace {
constexpr qsizetype fileSize = 262144; // bytes
constexpr int filesInMebibyte = 4;
constexpr char application[] = "compile"; // the folder of an application

using Random = std::mt19937_64; // always the same sequence

QByteArray picture(Random &random)
{
    QByteArray bytes;
    bytes.reserve(fileSize);
    while (bytes.size() < fileSize) {
        const Random::result_type word = random();
        bytes.append(reinterpret_cast<const char *>(&word), sizeof word);
    }
    return bytes;
}

QByteArray tagList(Random &random)
{
    QByteArray bytes;
    bytes.reserve(fileSize);
    for (int tag = 0; bytes.size() < fileSize; ++tag) {
        bytes += "tag" + QByteArray::number(tag) + " = DB10.DBW" + QByteArray::number(tag * 2)
            + ", limit " + QByteArray::number(random() % 1000) + ", unit mm\n";
    }
    bytes.truncate(fileSize);
    return bytes;
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush()) {
        qFatal("cannot write %s", qPrintable(path));
    }
}

void makeApplication(const QString &folder, int mebibytes)
{
    QDir(folder).mkdir(application);
    Random random;
    for (int number = 0; number < mebibytes * filesInMebibyte; ++number) {
        writeFile(folder + '/' + application + "/file" + QString::number(number),
                  number % 2 == 0 ? picture(random) : tagList(random));
    }
}

PackageHeader headerForThisPanel()
{
    return {PackageKind::Application, getCurrentRuntimeVersion().toUInt(),
            getCurrentRuntimeModel().constFirst()};
}
} // namespace

void makeSamplePackage(const QString &path, int mebibytes)
{
    const QTemporaryDir folder;
    makeApplication(folder.path(), mebibytes);
    writeFile(path, formatPackageHeader(headerForThisPanel()));
    const ToolResult packed = runTool(
        {"sh",
         {"-c", "tar -C \"$1\" -cf - compile | gzip -1 >>\"$2\"", "sh", folder.path(), path}});
    if (!packed.hasFinished() || !packed.errors.isEmpty()) {
        qFatal("cannot pack: %s", packed.errors.constData());
    }
}
