#include "factory/softwaresetup.h"

#include "factory/colorblending.h"
#include "factory/linktest.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTextEdit>

namespace {
struct Range
{
    int minimum;
    int maximum;
    const char *unit;
};
/// In hertz. The label has always said KHz.
constexpr Range frequencyRange{100, 20000, QT_TRANSLATE_NOOP("SoftwareSetup", " KHz")};
constexpr Range durationRange{30, 5000, QT_TRANSLATE_NOOP("SoftwareSetup", " ms")};

/// presetToneCommand() parses these texts when a button is tapped.
constexpr const char *toneButtons[] = {
    QT_TRANSLATE_NOOP("SoftwareSetup", "Beep f:2900 t:1000"),
    QT_TRANSLATE_NOOP("SoftwareSetup", "Beep f:2700 t:100"),
    QT_TRANSLATE_NOOP("SoftwareSetup", "Beep f:2900 t:100"),
};

constexpr const char *brightnessTexts[] = {"100%", "80%", "60%", "40%", "20%", "10%"};
constexpr int gradientHeight = 100; // px, at least

struct LinkButton
{
    const char *text;
    const char *test; // the port's number, counted from 1, before the "-"
};
constexpr LinkButton serialButtons[] = {
    {QT_TRANSLATE_NOOP("SoftwareSetup", "COM1 RS232"), "1-232"},
    {QT_TRANSLATE_NOOP("SoftwareSetup", "COM2 RS232"), "2-232"},
    {QT_TRANSLATE_NOOP("SoftwareSetup", "COM3 RS232"), "3-232"},
};
constexpr LinkButton etherButtons[] = {
    {QT_TRANSLATE_NOOP("SoftwareSetup", "Eth0"), "1-ether"},
    {QT_TRANSLATE_NOOP("SoftwareSetup", "Eth1"), "2-ether"},
};
constexpr char defaultPeer[] = "192.168.0.30:33";

QSpinBox *createSpinBox(const Range &range)
{
    auto *box = new QSpinBox;
    box->setSuffix(SoftwareSetup::tr(range.unit));
    box->setRange(range.minimum, range.maximum);
    box->setAccelerated(true); // a finger can only tap the arrows
    return box;
}
} // namespace

void SoftwareSetup::initTestPage()
{
    QVBoxLayout *page = addPage();
    addBuzzerRows(page);
    addDisplayRows(page);
    addLinkRows(page);
}

void SoftwareSetup::addBuzzerRows(QVBoxLayout *page)
{
    addButton(addRow(page, tr("Buzzer:")), tr("Beep"), &SoftwareSetup::slotBuzzerTest);

    QHBoxLayout *free = addRow(page, tr("Buzzer:"));
    m_frequency = createSpinBox(frequencyRange);
    m_duration = createSpinBox(durationRange);
    free->addWidget(m_frequency);
    free->addWidget(m_duration);
    addButton(free, tr("Beep"), &SoftwareSetup::slotBuzzerTest2);

    QHBoxLayout *presets = addRow(page, tr("Buzzer:"));
    for (const char *text : toneButtons) {
        addButton(presets, tr(text), &SoftwareSetup::slotBuzzerTest3);
    }
}

void SoftwareSetup::addDisplayRows(QVBoxLayout *page)
{
    auto *brightness = new QComboBox;
    for (const char *text : brightnessTexts) {
        brightness->addItem(QLatin1String(text));
    }
    addRow(page, tr("Brightness:"))->addWidget(brightness);
    // Connected last: adding the first item selects it, which must not set the brightness.
    connect(brightness, &QComboBox::currentIndexChanged, this, &SoftwareSetup::slotBrightnessTest);

    auto *gradient = new ColorBlending;
    gradient->setMinimumHeight(gradientHeight);
    page->addWidget(new QLabel(tr("Color Test")));
    page->addWidget(gradient);

    page->addWidget(createButton(tr("Pixel Test"), &SoftwareSetup::slotPixelTest));
}

void SoftwareSetup::addLinkRows(QVBoxLayout *page)
{
    QHBoxLayout *serial = addRow(page, tr("COM Port test:"));
    for (const LinkButton &button : serialButtons) {
        addButton(serial, tr(button.text), &SoftwareSetup::slotCOM232Test)
            ->setProperty("comtest", button.test);
    }
    QHBoxLayout *ether = addRow(page, tr("Ether Port test:"));
    for (const LinkButton &button : etherButtons) {
        addButton(ether, tr(button.text), &SoftwareSetup::slotEtherTest)
            ->setProperty("ethtest", button.test);
    }
    m_peerAddressEdit = new QLineEdit(defaultPeer);
    m_peerAddressEdit->setObjectName("peerAddressEdit");
    page->addWidget(m_peerAddressEdit);
    m_resultView = new QTextEdit;
    m_resultView->setObjectName("resultView");
    m_resultView->setWordWrapMode(QTextOption::WrapAnywhere); // fits a payload in two lines
    m_resultView->setReadOnly(true);                          // the verdict covers all of the text
    page->addWidget(m_resultView);
}

/// Number of the port whose button was tapped; 0 if the caller is not a button.
int SoftwareSetup::tappedLink(const char *property) const
{
    return sender() == nullptr ? 0 : linkNumber(sender()->property(property).toString());
}
