#pragma once

#include "inputpanel/platformbridge.h"
#include "system/startup.h"

#include <QApplication>
#include <QTest>

/// QTEST_MAIN with the input method of the program.
#define PANEL_QTEST_MAIN(TestClass)                                                                \
    int main(int argc, char *argv[])                                                               \
    {                                                                                              \
        shieldFromEnvironment();                                                                   \
        selectInputContextPlugin();                                                                \
        const QApplication application(argc, argv);                                                \
        TestClass test;                                                                            \
        return QTest::qExec(&test, argc, argv);                                                    \
    }
