#pragma once

#include <QtGlobal>

/// During its lifetime, every read of a plain file fails at @p offset bytes or later, as on a stick
/// that was pulled. A test program that uses it has a read() of its own.
class FailingReads
{
public:
    explicit FailingReads(qint64 offset);
    ~FailingReads();
    Q_DISABLE_COPY_MOVE(FailingReads)
};
