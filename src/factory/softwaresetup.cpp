#include "factory/softwaresetup.h"

#include "factory/linktest.h"
#include "system/run/commandline.h"
#include "system/run/factorycommand.h"
#include "system/run/process.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QSerialPort>
#include <QStackedWidget>

namespace {
constexpr QSize windowSize(800, 600); // px; the smallest panel
constexpr int fontPointSize = 15;
constexpr int margin = 4;               // px; leaves room for a row of three long texts
constexpr QSize sideButtonSize(84, 48); // px; fits a finger and leaves room for the pages
constexpr int rowButtonHeight = 34;     // px; low enough to show all rows of the test page
constexpr int testPage = 1;
} // namespace

SoftwareSetup::SoftwareSetup(QWidget *parent, const ToolLimits &limits)
    : QWidget(parent)
    , m_limits(limits)
{
    runAndWait(calibrationPauseCommand());
    runAndWait(calibrationCommand());
    setFixedSize(windowSize);
    QFont windowFont = font();
    windowFont.setPointSize(fontPointSize);
    setFont(windowFont);
    m_testCharacters = linkTestCharacters;
    init();
}

SoftwareSetup::~SoftwareSetup()
{
    qDeleteAll(m_ports);
}

void SoftwareSetup::init()
{
    m_pages = new QStackedWidget;
    initSetupPage();
    initTestPage();
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, Qt::Vertical);
    buttons->addButton(tr("Save"), QDialogButtonBox::AcceptRole);
    buttons->addButton(tr("Test"), QDialogButtonBox::ActionRole);
    for (QAbstractButton *button : buttons->buttons()) {
        button->setFixedSize(sideButtonSize);
    }
    connect(buttons, &QDialogButtonBox::accepted, this, &SoftwareSetup::slotAccept);
    connect(buttons, &QDialogButtonBox::rejected, this, &SoftwareSetup::slotReject);
    connect(buttons, &QDialogButtonBox::clicked, this, &SoftwareSetup::slotAction);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->addWidget(m_pages);
    layout->addWidget(buttons);
}

/// The rows are laid out on the viewport itself: all of them are visible, so nothing scrolls.
QVBoxLayout *SoftwareSetup::addPage()
{
    auto *page = new QScrollArea;
    m_pages->addWidget(page);
    auto *layout = new QVBoxLayout(page->viewport());
    layout->setContentsMargins(margin, margin, margin, margin);
    return layout;
}

QHBoxLayout *SoftwareSetup::addRow(QVBoxLayout *page, const QString &caption)
{
    auto *row = new QHBoxLayout;
    page->addLayout(row);
    row->addWidget(new QLabel(caption));
    return row;
}

QPushButton *SoftwareSetup::addButton(QHBoxLayout *row, const QString &text,
                                      void (SoftwareSetup::*slot)())
{
    auto *button = createButton(text, slot);
    row->addWidget(button);
    return button;
}

QPushButton *SoftwareSetup::createButton(const QString &text, void (SoftwareSetup::*slot)())
{
    auto *button = new QPushButton(text);
    button->setFixedHeight(rowButtonHeight);
    connect(button, &QPushButton::clicked, this, slot);
    return button;
}

void SoftwareSetup::slotReject()
{
    QCoreApplication::exit(0);
}

void SoftwareSetup::slotAction(QAbstractButton *button)
{
    if (button->text() == tr("Test")) {
        slotTest();
    }
}

void SoftwareSetup::slotTest()
{
    m_pages->setCurrentIndex(testPage);
    activateWindow();
}
