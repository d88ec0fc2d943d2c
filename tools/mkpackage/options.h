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
    WrongUsage = 2, ///< the command line is wrong, or the file to look at cannot be read
};

/// What the command line asks for.
struct Options
{
    enum class Task { Help, Version, Make, Info, Verify };

    Task task = Task::Help;
    PackageHeader header; ///< of the package to make
    QString output;       ///< file to make
    QString folder;       ///< folder whose contents go into the package
    QString file;         ///< package to look at
    VerifyTask verify;    ///< how to verify it
    bool json = false;    ///< report to a program, not to a person
    QString error;        ///< what is wrong with the command line; empty if nothing is
};

/// Reads the command line @p arguments, without the program's name. Anything that a panel would
/// misread is an error: a target that is not ASCII or too long for its field, a version that is
/// not an unsigned 32-bit number.
Options parseOptions(const QStringList &arguments);

/// What may surprise the maker of a package, one line each: an extension with which no page lists
/// packages of this kind, a version that a panel shows as a negative number.
QStringList warningsFor(const PackageHeader &header, const QString &output);

bool isPrintableAscii(const QString &text);

/// The name of a kind on the command line; empty for an unknown kind.
QString kindName(PackageKind kind);

/// The time for the files of a package, in seconds since 1970: @p value, the text of the
/// environment variable SOURCE_DATE_EPOCH, or 2000-01-01 if that is empty. Result: nothing if @p
/// value is not a number, or is a time after the year 2242, which the octal digits of a tar header
/// cannot hold.
std::optional<qint64> fileTime(const QByteArray &value);
} // namespace MkPackage
