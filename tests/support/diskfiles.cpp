#include "diskfiles.h"

#include "panelguard.h"

#include <QProcess>

#include <filesystem>
#include <fstream>
#include <sstream>

// Uses the standard library, because QFile cannot open names that are not UTF-8.

namespace {
std::filesystem::path bytePath(const QByteArray &path)
{
    requirePanel();
    return {path.toStdString()};
}
} // namespace

void writeFile(const QByteArray &path, const QByteArray &content)
{
    const std::filesystem::path file = bytePath(path);
    std::filesystem::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    if (!stream.write(content.constData(), content.size()).flush()) {
        qFatal("cannot write %s", path.constData());
    }
}

QByteArray readFile(const QByteArray &path)
{
    std::ifstream stream(bytePath(path), std::ios::binary);
    if (!stream) {
        return "none";
    }
    std::ostringstream content;
    content << stream.rdbuf();
    return QByteArray::fromStdString(content.str());
}

void emptyFolder(const QByteArray &path)
{
    const std::filesystem::path folder = bytePath(path);
    std::filesystem::create_directories(folder);
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        std::filesystem::remove_all(entry.path());
    }
}

QByteArray shellBytes(const QString &commands)
{
    requirePanel();
    QProcess shell;
    shell.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    shell.start("/bin/sh", {"-ec", commands});
    if (!shell.waitForFinished(-1) || shell.exitStatus() != QProcess::NormalExit
        || shell.exitCode() != 0) {
        qFatal("failed: %s", qPrintable(commands));
    }
    return shell.readAllStandardOutput();
}
