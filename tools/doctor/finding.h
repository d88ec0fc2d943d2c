#pragma once

#include <QList>
#include <QString>

/// How much a finding matters. The numbers are the tool's exit status.
enum class Level { Ok = 0, Warning = 1, Error = 2 };

/// One line of the report.
struct Finding
{
    Level level = Level::Ok;
    QString found;
    QString advice;  ///< what to do about it; empty if it is ok
    QString subject; ///< what it is about; the check's own subject if empty
};

using Findings = QList<Finding>;

inline Finding fine(const QString &found)
{
    return {Level::Ok, found, {}, {}};
}

inline Finding warning(const QString &found, const QString &advice)
{
    return {Level::Warning, found, advice, {}};
}

inline Finding error(const QString &found, const QString &advice)
{
    return {Level::Error, found, advice, {}};
}

/// @p finding about @p subject.
inline Finding about(const QString &subject, Finding finding)
{
    finding.subject = subject;
    return finding;
}
