#include "childprocess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

ChildProcess::ChildProcess(const std::filesystem::path &program)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        posix_spawn_file_actions_addopen(&actions, file, "/dev/null", O_RDWR, 0);
    }
    std::string path = program;
    char *const arguments[] = {path.data(), nullptr};
    if (posix_spawn(&m_process, path.c_str(), &actions, nullptr, arguments, environ) != 0) {
        std::fprintf(stderr, "cannot start %s\n", path.c_str());
        std::exit(EXIT_FAILURE);
    }
    posix_spawn_file_actions_destroy(&actions);
}

ChildProcess::~ChildProcess()
{
    if (m_process != 0) {
        kill(m_process, SIGKILL);
        waitForEnd();
    }
}

void ChildProcess::waitForEnd()
{
    waitpid(m_process, nullptr, 0);
    m_process = 0;
}

double ChildProcess::memory() const
{
    std::ifstream file("/proc/" + std::to_string(m_process) + "/smaps_rollup");
    std::string word;
    while (file >> word) {
        if (word == "Pss:") {
            double value = 0;
            file >> value;
            return value;
        }
    }
    std::fputs("the measured program has ended\n", stderr);
    std::exit(EXIT_FAILURE);
}
