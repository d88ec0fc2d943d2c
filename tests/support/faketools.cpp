#include "faketools.h"

#include <QFile>

namespace {
constexpr char logName[] = "calls.log";

void writeScript(const QString &path, const QString &text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        qFatal("cannot write %s", qPrintable(path));
    }
    file.write(text.toUtf8());
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}
} // namespace

FakeTools::FakeTools(const QStringList &names)
    : m_previousPath(qgetenv("PATH"))
{
    for (const QString &name : names) {
        setBody(name, {});
    }
    qputenv("PATH", m_folder.path().toLocal8Bit() + ':' + m_previousPath);
}

FakeTools::~FakeTools()
{
    qputenv("PATH", m_previousPath);
}

void FakeTools::setBody(const QString &name, const QString &body) const
{
    const QString recorder = QString("#!/bin/sh\n"
                                     "call=${0##*/}\n"
                                     "for argument; do call=\"$call [$argument]\"; done\n"
                                     "printf '%s\\n' \"$call\" >>'%1'\n")
                                 .arg(filePath(logName));
    writeScript(filePath(name), recorder + body + '\n');
}

QStringList FakeTools::calls() const
{
    QFile log(filePath(logName));
    if (!log.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray text = log.readAll();
    const QByteArray endedLines = text.left(text.lastIndexOf('\n') + 1); // a tool may be writing
    return QString::fromUtf8(endedLines).split('\n', Qt::SkipEmptyParts);
}

void FakeTools::forgetCalls() const
{
    QFile::remove(filePath(logName));
}

QString FakeTools::filePath(const QString &name) const
{
    return m_folder.filePath(name);
}
