#pragma once

#include <QtGlobal>

/// Errors of the calls that give a file a name, numbers of errno; 0: the call works.
struct RenameErrors
{
    int renameToNew = 0; ///< of renameat2() with a flag, which some file systems do not know
    int link = 0;
    int rename = 0;
};

/// While this lives, renaming fails as on a file system that lacks something. A test program that
/// uses it renames through functions of its own.
class FailingRenames
{
public:
    explicit FailingRenames(const RenameErrors &errors);
    ~FailingRenames();
    Q_DISABLE_COPY_MOVE(FailingRenames)
};
