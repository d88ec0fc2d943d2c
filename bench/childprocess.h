#pragma once

#include <sys/types.h>

#include <filesystem>

/// A program that runs for as long as this lives, without input and output.
class ChildProcess
{
public:
    /// Ends the benchmark if @p program cannot be started.
    explicit ChildProcess(const std::filesystem::path &program);
    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    void waitForEnd();

    /// Memory of the process in kB, a page that others have mapped too counted in shares (PSS).
    double memory() const;

private:
    pid_t m_process = 0; ///< 0: has ended
};
