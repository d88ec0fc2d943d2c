#pragma once

#include <QString>
#include <QStringList>

/// A tool and its arguments. No shell is involved, so nothing has to be quoted.
struct Command
{
    QString tool = {}; ///< path, or a name that is looked up on PATH
    QStringList arguments = {};

    bool operator==(const Command &) const = default;
};
