#pragma once

/// What a panel tells the user of an application or firmware package that it does not install.
/// The texts are still to be translated, in the context "BiosInterface".
struct PackageRefusal
{
    int result; ///< an InstallResult
    const char *title;
    const char *text;
};

/// What is shown after the InstallResult @p result; null if nothing is.
const PackageRefusal *findPackageRefusal(int result);
