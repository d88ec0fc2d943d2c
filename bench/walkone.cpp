// Finds the application packages below a folder, like "find -type f -name '*.kpc'".

#include "samplefiles.h"
#include "support/panelplace.h"
#include "system/textcodec.h"

#include <cstdio>

int main(int argc, char *argv[])
{
    requirePanel();
    const QByteArray folder = onlyArgument(argc, argv, "walkone FOLDER");
    for (const QString &name : findPackagesBelow(textFromBytes(folder), sampleType)) {
        std::puts((folder + bytesFromText(name)).constData());
    }
    return 0;
}
