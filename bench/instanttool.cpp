// Replaces each tool that the program runs, so that only the program itself is measured.

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace {
// Without the name of an output, the program would not set up the display.
constexpr char displayList[] = "LVDS1 connected primary\n";

/// Ignores errors: the measurement does not depend on the text.
void put(int file, const std::string &text)
{
    if (write(file, text.data(), text.size()) < 0) {
        return;
    }
}

void record(const std::string &name)
{
    if (const char *log = std::getenv("PANEL_BENCH_TOOL_LOG")) {
        put(open(log, O_WRONLY | O_APPEND | O_CREAT, 0600), name + '\n');
    }
}
} // namespace

int main(int argc, char *argv[])
{
    const std::string path = argv[0];
    const std::string name = path.substr(path.rfind('/') + 1); // also correct without a "/"
    record(name);
    if (name == "xrandr" && argc == 2) { // "xrandr -q", which lists the outputs
        put(STDOUT_FILENO, displayList);
    }
    return 0;
}
