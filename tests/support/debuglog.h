#pragma once

#include <QStringList>

/// Collects every line of the debug channel during its lifetime. Only one may exist at a time.
class DebugLog
{
public:
    DebugLog();
    ~DebugLog();
    Q_DISABLE_COPY_MOVE(DebugLog)

    /// The debug lines so far, in order, without warnings and errors.
    QStringList lines() const;
};
