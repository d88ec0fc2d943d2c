#include "panelplace.h"

#include <cstdio>
#include <cstdlib>
#include <string>

void requirePanel()
{
    if (!std::filesystem::exists("/run/talmero-panel")) {
        std::fputs("This runs in the simulated panel only: bench/run.sh\n", stderr);
        std::exit(EXIT_FAILURE);
    }
}

std::filesystem::path ownFolder()
{
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

std::filesystem::path instantToolsFolder()
{
    return ownFolder() / "instant-tools";
}

void useInstantTools()
{
    const char *path = std::getenv("PATH");
    const std::string previous = path != nullptr ? path : "/usr/bin:/bin";
    setenv("PATH", (instantToolsFolder().string() + ':' + previous).c_str(), 1);
}

void prepareForWindow()
{
    requirePanel();
    useInstantTools();
    setenv("QT_LOGGING_RULES", "*.debug=false", 1);
}

const char *onlyArgument(int argc, char *argv[], const char *usage)
{
    if (argc != 2) {
        std::fprintf(stderr, "Usage: %s\n", usage);
        std::exit(2);
    }
    return argv[1];
}
