#pragma once

#include <QStringList>

/// Collects every line of the debug channel while it lives. One at a time.
class DebugLog
{
public:
    DebugLog();
    ~DebugLog();
    Q_DISABLE_COPY_MOVE(DebugLog)

    /// The debug lines so far, in order. Warnings and worse are not among them.
    QStringList lines() const;
};
