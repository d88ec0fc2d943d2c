// Serves the file system of a stick that vanishes: it shows the files of a folder until BYTES bytes
// of them were read, or FOLDERS folders were listed. VanishingStick starts it.

#define FUSE_USE_VERSION 31

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

#include <dirent.h>
#include <fcntl.h>
#include <fuse3/fuse.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr long long endless = -1;

struct Stick
{
    std::string source;
    std::string mountPoint;
    std::string_view end;
    long long bytes = endless;
    long long folders = endless;
    std::chrono::milliseconds hangTime{};
};

Stick stick;

std::string sourcePath(const char *path)
{
    return stick.source + path;
}

int resultOf(long long result)
{
    return result < 0 ? -errno : static_cast<int>(result);
}

/// Ends the stick. After an unmount the server continues, for files that are still open.
void goAway()
{
    if (stick.end == "unmounted") {
        umount2(stick.mountPoint.c_str(), MNT_DETACH);
    } else if (stick.end == "torn off") {
        umount2(stick.mountPoint.c_str(), MNT_FORCE | MNT_DETACH);
    } else {
        std::this_thread::sleep_for(stick.hangTime);
        raise(SIGKILL);
    }
    stick.bytes = endless;
    stick.folders = endless;
}

int getAttributes(const char *path, struct stat *status, fuse_file_info *)
{
    return resultOf(lstat(sourcePath(path).c_str(), status));
}

int listFolder(const char *path, void *entries, fuse_fill_dir_t add, off_t, fuse_file_info *,
               fuse_readdir_flags)
{
    if (stick.folders == 0) {
        goAway();
    } else if (stick.folders > 0) {
        --stick.folders;
    }
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(opendir(sourcePath(path).c_str()), closedir);
    if (!folder) {
        return -errno;
    }
    while (const dirent *entry = readdir(folder.get())) {
        struct stat status = {};
        status.st_mode = DTTOIF(static_cast<mode_t>(entry->d_type));
        add(entries, entry->d_name, &status, 0, fuse_fill_dir_flags(0));
    }
    return 0;
}

int openFile(const char *path, fuse_file_info *info)
{
    const int descriptor = open(sourcePath(path).c_str(), O_RDONLY | O_CLOEXEC);
    info->fh = static_cast<uint64_t>(descriptor);
    info->direct_io = 1; // without the kernel's read-ahead
    return descriptor < 0 ? -errno : 0;
}

/// Before the stick vanishes, a read returns fewer bytes than asked for, as on a real disk.
int readFile(const char *, char *bytes, size_t size, off_t offset, fuse_file_info *info)
{
    if (stick.bytes == 0) {
        goAway();
    }
    if (stick.bytes > 0) {
        size = std::min(size, static_cast<size_t>(stick.bytes));
    }
    const ssize_t result = pread(static_cast<int>(info->fh), bytes, size, offset);
    if (stick.bytes > 0 && result > 0) {
        stick.bytes -= result;
    }
    return resultOf(result);
}

int closeFile(const char *, fuse_file_info *info)
{
    return resultOf(close(static_cast<int>(info->fh)));
}

/// Serves until the stick is unmounted and all its files are closed.
bool serve(char *program)
{
    fuse_operations operations = {};
    operations.getattr = getAttributes;
    operations.readdir = listFolder;
    operations.open = openFile;
    operations.read = readFile;
    operations.release = closeFile;
    std::string nothingKept = "-oattr_timeout=0,entry_timeout=0";
    std::array<char *, 3> arguments{program, nothingKept.data(), nullptr};
    fuse_args options = FUSE_ARGS_INIT(2, arguments.data());
    fuse *server = fuse_new(&options, &operations, sizeof(operations), nullptr);
    if (server == nullptr || fuse_mount(server, stick.mountPoint.c_str()) != 0) {
        return false;
    }
    std::puts("mounted");
    std::fflush(stdout);
    const bool served = fuse_loop(server) == 0;
    fuse_unmount(server);
    fuse_destroy(server);
    return served;
}
} // namespace

int main(int argc, char *argv[])
{
    if (argc != 7) {
        std::fputs("Usage: stickserver SOURCE MOUNTPOINT END BYTES FOLDERS MILLISECONDS\n", stderr);
        return EXIT_FAILURE;
    }
    stick.source = argv[1];
    stick.mountPoint = argv[2];
    stick.end = argv[3];
    stick.bytes = std::atoll(argv[4]);
    stick.folders = std::atoll(argv[5]);
    stick.hangTime = std::chrono::milliseconds(std::atoll(argv[6]));
    return serve(argv[0]) ? EXIT_SUCCESS : EXIT_FAILURE;
}
