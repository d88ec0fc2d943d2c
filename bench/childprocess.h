#pragma once

#include <sys/types.h>

#include <filesystem>

/// A program that runs while this object lives, without input and output.
class ChildProcess
{
public:
    /// Exits the benchmark if @p program cannot be started.
    explicit ChildProcess(const std::filesystem::path &program);
    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    void waitForEnd();

    /// Memory of the process in kB, with pages shared between processes counted in part (PSS).
    double memory() const;

private:
    pid_t m_process = 0; ///< 0: ended
};
