#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/// A path at which reading or writing fails in one of several ways, for as long as this lives.
/// Root passes over permissions, so with "no permission" the test process acts as an ordinary
/// user on files meanwhile.
class FaultFile
{
public:
    /// @p kind is one of the texts of the rows below.
    explicit FaultFile(const QString &kind);
    ~FaultFile();
    Q_DISABLE_COPY_MOVE(FaultFile)

    QString path() const;

    /// What root finds in the file; empty if it is no ordinary file.
    QByteArray content() const;

private:
    QTemporaryDir m_folder;
    QString m_path;
};

/// A file system of little room in place of the folder at @p path, for as long as this lives.
class SmallDisk
{
public:
    SmallDisk(const char *path, const char *options);
    ~SmallDisk();
    Q_DISABLE_COPY_MOVE(SmallDisk)

private:
    const char *m_path;
};

/// Test rows with a column "kind": every way in which a file cannot be read.
void addUnreadablePathRows();

/// Test rows with a column "kind": every way in which a file cannot be written.
void addUnwritablePathRows();
