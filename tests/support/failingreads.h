#pragma once

#include <QtGlobal>

/// While this lives, every read of a plain file from @p offset bytes on fails, as it does where a
/// stick was pulled out. A test program that uses it reads through a function of its own.
class FailingReads
{
public:
    explicit FailingReads(qint64 offset);
    ~FailingReads();
    Q_DISABLE_COPY_MOVE(FailingReads)
};
