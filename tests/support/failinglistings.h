#pragma once

#include <QtGlobal>

/// While this lives, every listing of a folder fails once @p entries entries have been read in
/// all, as it does where a stick was pulled out. A test program that uses it lists folders
/// through a function of its own.
class FailingListings
{
public:
    explicit FailingListings(int entries);
    ~FailingListings();
    Q_DISABLE_COPY_MOVE(FailingListings)
};

/// While this lives, listings say of no entry what it is, as those of some file systems do.
class UntypedListings
{
public:
    UntypedListings();
    ~UntypedListings();
    Q_DISABLE_COPY_MOVE(UntypedListings)
};
