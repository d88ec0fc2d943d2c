#include "samplefiles.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

namespace {
constexpr int filesInFolder = 500;

void makeFile(const std::string &path)
{
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    if (file < 0) {
        std::fprintf(stderr, "cannot make %s\n", path.c_str());
        std::exit(EXIT_FAILURE);
    }
    close(file);
}
} // namespace

void makeSampleFiles(const std::string &folder, int files, int filesToPackage)
{
    std::filesystem::remove_all(folder);
    std::string current;
    for (int number = 0; number < files; ++number) {
        if (number % filesInFolder == 0) {
            current = folder + "/line" + std::to_string(number / filesInFolder);
            std::filesystem::create_directories(current);
        }
        makeFile(current + "/recipe" + std::to_string(number)
                 + (number % filesToPackage == 0 ? packageTypeInfo(sampleType).extension : ".txt"));
    }
}
