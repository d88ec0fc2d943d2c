#pragma once

/// The message about an application or firmware package that is not installed. The caller
/// translates its texts in the context "BiosInterface".
struct PackageRefusal
{
    int result; ///< an InstallResult
    const char *title;
    const char *text;
};

/// The message for the InstallResult @p result; null if it has none.
const PackageRefusal *findPackageRefusal(int result);
