#include "guardedfiles.h"

#include "system/paths.h"

namespace Guard {
const QList<GuardedFile> &guardedFiles()
{
    // clang-format off
    static const QList<GuardedFile> files{
        {Paths::settingsFile,       Kind::Settings}, // before the interfaces, which follow it
        {Paths::modelFile,          Kind::Line},
        {Paths::runtimeOemFile,     Kind::Line},
        {Paths::runtimeVersionFile, Kind::Line},
        {Paths::biosVersionFile,    Kind::Line},
        {Paths::interfacesFile,     Kind::Interfaces},
        {Paths::namingRulesFile,    Kind::NoCopy},
    };
    // clang-format on
    return files;
}

QString nameOf(const QString &path)
{
    return path.section('/', -1);
}
} // namespace Guard
