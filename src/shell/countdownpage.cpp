#include "shell/biosinterface.h"

#include "system/run/commandline.h"
#include "system/run/process.h"
#include "system/startup.h"
#include "widgets/startingapplicationaniationbutton.h"

#include <QStackedWidget>
#include <QVBoxLayout>

namespace {
constexpr int countDownMargin = 19; // px around the button
}

void BiosInterface::initCountDownPage()
{
    m_countDown = new StartingApplicationAniationButton;
    connect(m_countDown, &StartingApplicationAniationButton::countDownToZero, this,
            &BiosInterface::runApplication);
    connect(m_countDown, &StartingApplicationAniationButton::buttonClicked, this,
            &BiosInterface::goToSettingsPage);
    auto *layout = new QVBoxLayout(m_pages->widget(CountDownPage));
    layout->setContentsMargins(countDownMargin, countDownMargin, countDownMargin, countDownMargin);
    layout->setSpacing(0);
    layout->addWidget(m_countDown);
}

void BiosInterface::runApplication()
{
    m_pages->setCurrentIndex(MainSettingsPage);
    runAndWait(runtimeCommand(), givenEnvironment());
    repaint(); // show the page at once: the window was not painted while the runtime ran
}

void BiosInterface::goToSettingsPage()
{
    m_pages->setCurrentIndex(MainSettingsPage);
}
