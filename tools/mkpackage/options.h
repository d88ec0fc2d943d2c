#pragma once

#include "packages/packageheader.h"
#include "verify.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace MkPackage {
/// Exit status of the program.
enum ExitStatus : int {
    Done = 0,
    Failed = 1,     ///< nothing was made, or the package is damaged, refused or dangerous
    WrongUsage = 2, ///< the command line is wrong, or nothing can be said of the file to look at
};

/// What the command line asks for.
struct Options
{
    enum class Task { Help, Version, Make, Info, Verify };

    Task task = Task::Help;
    PackageHeader header; ///< of the package to make
    QString output;       ///< file to make
    QString folder;       ///< its contents go into the package
    QString file;         ///< package to look at
    VerifyTask verify;    ///< what to ask of it
    bool json = false;    ///< tell a program, not a person
    QString error;        ///< why the command line cannot be followed; empty if it can
};

/// Reads the command line @p arguments, the program's name not among them. Whatever a panel would
/// misread is an error: a target that is not ASCII or too long for its field, a version that is
/// no unsigned 32-bit number.
Options parseOptions(const QStringList &arguments);

/// What a panel would make of a package that its maker may not expect, one line each: an
/// extension by which no page finds a package of this kind, a version that is shown as a negative
/// number.
QStringList warningsFor(const PackageHeader &header, const QString &output);

bool isPrintableAscii(const QString &text);

/// The name of a kind as the command line has it; empty for an unknown kind.
QString kindName(PackageKind kind);

/// The time that the files of a package get, in seconds since 1970: that of the environment
/// variable SOURCE_DATE_EPOCH, whose text @p value is, or 2000-01-01 if it is not set.
/// Result: nothing if it is no number, or a time after the year 2242, which a tar header of plain
/// digits cannot hold.
std::optional<qint64> fileTime(const QByteArray &value);
} // namespace MkPackage
