#include "factory/softwaresetup.h"

#include "factory/kpixeltestwidget.h"
#include "system/output/tooloutput.h"
#include "system/run/commandline.h"
#include "system/run/factorycommand.h"
#include "system/run/process.h"

#include <QPushButton>
#include <QSpinBox>

void SoftwareSetup::slotBuzzerTest()
{
    runAndWait(beepCommand(), m_limits.tool);
}

void SoftwareSetup::slotBuzzerTest2()
{
    startDetached(
        toneCommand(QString::number(m_frequency->value()), QString::number(m_duration->value())));
}

void SoftwareSetup::slotBuzzerTest3()
{
    if (const auto *button = qobject_cast<const QPushButton *>(sender())) {
        startDetached(presetToneCommand(button->text()));
    }
}

void SoftwareSetup::slotBrightnessTest(int index)
{
    const QString output = connectedOutputName(readOutput(outputQueryCommand(), m_limits.tool));
    const QString brightness = QString("%1").arg(index * 20 / 100.0);
    runAndWait(brightnessCommand(output, brightness), m_limits.tool);
}

void SoftwareSetup::slotPixelTest()
{
    auto *test = new KPixelTestWidget; // deletes itself at its end
    test->run();
}
