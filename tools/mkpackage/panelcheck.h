#pragma once

#include "findings.h"
#include "packages/packageheader.h"

#include <optional>

namespace MkPackage {
/// What is known about a panel. Anything unknown is assumed to be as the package wants it.
struct PanelFacts
{
    std::optional<QString> model;
    std::optional<QString> oem;
    std::optional<quint32> runtimeVersion;
    std::optional<quint32> biosVersion;
};

/// Reports what a header asks for, and what should not be in its @p bytes.
void checkHeader(const QByteArray &bytes, const PackageHeader &header, Findings &findings);

/// Reports what @p panel does with a package with this header. The name of the file decides which
/// page installs it.
void checkPanel(const PackageHeader &header, const QString &name, const PanelFacts &panel,
                Findings &findings);

/// Reports what a panel does with a file that is shorter than a header.
void checkShortFile(qint64 size, const QString &name, Findings &findings);
} // namespace MkPackage
