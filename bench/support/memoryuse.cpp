#include "memoryuse.h"

#include <fstream>

double memoryUse(const std::string &count)
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == count) {
            double value = 0;
            status >> value;
            return value;
        }
    }
    return 0;
}
