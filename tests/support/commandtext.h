#pragma once

#include "system/run/command.h"

#include <QTest>

/// A command as QCOMPARE shows it: tool and arguments, each in brackets.
inline char *toString(const Command &command)
{
    const QStringList words = QStringList{command.tool} + command.arguments;
    return QTest::toString('[' + words.join("] [") + ']');
}
