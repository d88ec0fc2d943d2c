// Installs one package. Prints the duration in ms and the peak memory of this process in KiB.

#include "packages/packageinstaller.h"
#include "support/memoryuse.h"
#include "support/panelplace.h"
#include "support/resulttable.h"
#include "system/textcodec.h"

#include <cstdio>

int main(int argc, char *argv[])
{
    requirePanel();
    const QString path = textFromBytes(onlyArgument(argc, argv, "installone PACKAGE"));
    const auto begin = now();
    const int result = installPackage(path);
    std::printf("%f %f\n", millisecondsSince(begin), memoryUse("VmHWM:"));
    return result;
}
