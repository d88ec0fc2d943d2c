#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/// A path where reading or writing fails in one of several ways, while this object lives.
/// Permissions do not stop root, so with "no permission" the test process accesses files as an
/// ordinary user meanwhile.
class FaultFile
{
public:
    /// @p kind is one of the texts of the rows below.
    explicit FaultFile(const QString &kind);
    ~FaultFile();
    Q_DISABLE_COPY_MOVE(FaultFile)

    QString path() const;

    /// Content of the file, read as root; empty if it is not an ordinary file.
    QByteArray content() const;

private:
    QTemporaryDir m_folder;
    QString m_path;
};

/// A small file system over the folder at @p path, during the lifetime of this object.
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
