#pragma once

#include "findings.h"
#include "packages/packageheader.h"

#include <optional>

namespace MkPackage {
/// A panel as far as it is known. Of what is not, the package's own wish is taken.
struct PanelFacts
{
    std::optional<QString> model;
    std::optional<QString> oem;
    std::optional<quint32> runtimeVersion;
    std::optional<quint32> biosVersion;
};

/// Looks for what a header should not have, in its @p bytes, and says what it asks for.
void checkHeader(const QByteArray &bytes, const PackageHeader &header, Findings &findings);

/// Says what the panel @p panel makes of a package by its header, by the page that finds the file
/// @p name.
void checkPanel(const PackageHeader &header, const QString &name, const PanelFacts &panel,
                Findings &findings);

/// Says what a panel makes of a file that is shorter than a header.
void checkShortFile(qint64 size, const QString &name, Findings &findings);
} // namespace MkPackage
