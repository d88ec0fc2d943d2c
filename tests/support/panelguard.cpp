#include "panelguard.h"

#include <QFile>

#include <cstdio>
#include <cstdlib>

void requirePanel()
{
    if (!QFile::exists("/run/talmero-panel")) {
        std::fputs("This test runs in the simulated panel only: simulator/panel TEST\n", stderr);
        std::exit(EXIT_FAILURE);
    }
}
