#pragma once

/// The right to install a package. One program of the panel has it at a time: the settings program
/// or talmero-install. The tools that it runs share it, so that it lasts until the last of them has
/// ended, even if the program is killed while tar unpacks.
class InstallLock
{
public:
    /// Takes the right unless another program has it. Does not wait.
    InstallLock();
    ~InstallLock();
    InstallLock(const InstallLock &) = delete;
    InstallLock &operator=(const InstallLock &) = delete;

    /// False if another program is installing. True also if the lock's file cannot be opened: a
    /// panel must be able to install without it.
    bool isHeld() const { return m_isHeld; }

private:
    int m_file;
    bool m_isHeld;
};
