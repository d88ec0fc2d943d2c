#pragma once

#include "system/run/command.h"

#include <QTest>

/// Lets QCOMPARE print a command: tool and arguments, each in brackets.
inline char *toString(const Command &command)
{
    const QStringList words = QStringList{command.tool} + command.arguments;
    return QTest::toString('[' + words.join("] [") + ']');
}
