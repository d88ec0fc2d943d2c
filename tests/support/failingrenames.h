#pragma once

#include <QtGlobal>

/// Errors of the calls that name a file, as errno values; 0 means that the call works.
struct RenameErrors
{
    int renameToNew = 0; ///< renameat2() with a flag, which some file systems lack
    int link = 0;
    int rename = 0;
};

/// During its lifetime, renaming fails as on a file system with missing features. A test program
/// that uses it has rename functions of its own.
class FailingRenames
{
public:
    explicit FailingRenames(const RenameErrors &errors);
    ~FailingRenames();
    Q_DISABLE_COPY_MOVE(FailingRenames)
};
