#pragma once

#include <QtGlobal>

/// During its lifetime, every listing of a folder fails after @p entries entries in total, as on a
/// stick that was pulled. A test program that uses it has a readdir() of its own.
class FailingListings
{
public:
    explicit FailingListings(int entries);
    ~FailingListings();
    Q_DISABLE_COPY_MOVE(FailingListings)
};

/// During its lifetime, listings do not contain the types of entries, as on some file systems.
class UntypedListings
{
public:
    UntypedListings();
    ~UntypedListings();
    Q_DISABLE_COPY_MOVE(UntypedListings)
};
