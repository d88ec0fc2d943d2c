#include "shell/biosinterface.h"

#include "system/paths.h"
#include "system/run/commandline.h"
#include "system/run/process.h"

#include <QDir>

void BiosInterface::initCalibrationPage()
{
    initEmptyPage(CalibrationPage, tr("Calibration"));
}

bool BiosInterface::loadCalibrationSettings()
{
    if (QDir(Paths::biosFolder).exists()) {
        runAndWait(calibrationCommand());
    }
    return true;
}

bool BiosInterface::saveCalibrationSettings()
{
    return true; // the calibration tool stores its own result
}
