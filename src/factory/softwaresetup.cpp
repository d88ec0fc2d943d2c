#include "factory/softwaresetup.h"

SoftwareSetup::SoftwareSetup(QWidget *parent)
    : QWidget(parent)
{
}
