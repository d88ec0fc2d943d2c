#include "panelfiles.h"

#include "panelguard.h"

#include <QDir>
#include <QFile>

namespace {
QString pathOf(const QString &name)
{
    requirePanel();
    return "/opt/talmero/bios/" + name;
}
} // namespace

void writePanelFile(const QString &name, const QByteArray &content)
{
    removePanelFile(name);
    QFile file(pathOf(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write %s", qPrintable(file.fileName()));
    }
}

QByteArray readPanelFile(const QString &name)
{
    QFile file(pathOf(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void removePanelFile(const QString &name)
{
    QFile::remove(pathOf(name));
    QDir().rmdir(pathOf(name));
}

void putFolderAtPanelFile(const QString &name)
{
    removePanelFile(name);
    QDir().mkdir(pathOf(name));
}
