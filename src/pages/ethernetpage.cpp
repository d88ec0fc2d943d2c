#include "shell/biosinterface.h"

#include "system/output/ifconfigoutput.h"
#include "system/run/commandline.h"
#include "system/run/process.h"
#include "system/settings/settingskeys.h"
#include "system/settings/storedports.h"
#include "widgets/heading.h"
#include "widgets/lineeditwithkeypad.h"
#include "widgets/metrics.h"
#include "widgets/radiobutton.h"

#include <QButtonGroup>
#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {
constexpr int editMinimumHeight = 20; // px
constexpr int captionSpacing = 6;     // px
constexpr int editSpacing = 4;        // px; small enough for both ports on a screen 600 pixels high
constexpr QColor disabledTextColor(80, 80, 80);

/// The differences between the two ports. The address and mask of Lan 1 share an object name on
/// purpose: it is part of the interface. Lan 1 starts without a mode; loading the page sets one.
struct PortLook
{
    const char *caption;
    const char *dhcpName;
    const char *manualName;
    const char *addressName;
    const char *maskName;
    bool startsDisabled;
};

constexpr PortLook portLooks[] = {
    {QT_TRANSLATE_NOOP("BiosInterface", "Lan 1"), "auto_detect_radioButton",
     "manual_input_radioButton", "ip_address_lineEdit", "ip_address_lineEdit", false},
    {QT_TRANSLATE_NOOP("BiosInterface", "Lan 2"), "auto_detect_radioButton2",
     "manual_input_radioButton2", "ip_address_lineEdit2", "ip_mask_lineEdit2", true},
};

LineEditWithKeyPad *createEdit(const char *name, QWidget *page)
{
    auto *edit = new LineEditWithKeyPad(QString(), page);
    edit->setObjectName(QLatin1String(name));
    edit->setMinimumHeight(editMinimumHeight);
    edit->setEnabled(false);
    // With DHCP the disabled line edits show the address. It must be readable at arm's length.
    QPalette palette = edit->palette();
    palette.setColor(QPalette::Disabled, QPalette::Text, disabledTextColor);
    edit->setPalette(palette);
    return edit;
}

RadioButton *createMode(const QString &text, const char *name, QButtonGroup *modes, QWidget *page)
{
    auto *mode = new RadioButton(text, page);
    mode->setObjectName(QLatin1String(name));
    modes->addButton(mode);
    return mode;
}
} // namespace

void BiosInterface::initEthernetPage()
{
    QVBoxLayout *content = createContent(Metrics::wideMargin);
    content->setSpacing(0); // no gaps between the rows: a tap always hits one
    createEthernetPort(0, content);
    createEthernetPort(1, content);
    setPageLayout(createTitleBar(tr("Ethernet"), true, true), content,
                  m_pages->widget(EthernetPage));
}

void BiosInterface::createEthernetPort(int lan, QBoxLayout *layout)
{
    QWidget *page = m_pages->widget(EthernetPage);
    const PortLook &look = portLooks[lan];
    EthernetPort &port = m_ports.at(size_t(lan));
    auto *modes = new QButtonGroup(page);
    port.disable = createMode(tr("Disable"), "", modes, page);
    port.disable->setCheckable(true);
    port.dhcp = createMode(tr("DHCP"), look.dhcpName, modes, page);
    port.manual = createMode(tr("Manual Input"), look.manualName, modes, page);
    port.address = createEdit(look.addressName, page);
    port.mask = createEdit(look.maskName, page);
    for (LineEditWithKeyPad *edit : {port.address, port.mask}) {
        connect(port.disable, &RadioButton::clicked, edit, &QWidget::setDisabled);
        connect(port.dhcp, &RadioButton::clicked, edit, &QWidget::setDisabled);
        connect(port.manual, &RadioButton::clicked, edit, &QWidget::setEnabled);
    }
    if (look.startsDisabled) {
        port.disable->setChecked(true);
    }

    auto *addressCaption = new QLabel(tr("IP:"), page);
    auto *maskCaption = new QLabel(tr("Netmask:"), page);
    for (QLabel *editCaption : {addressCaption, maskCaption}) {
        setWidgetWithStyle(editCaption);
    }
    auto *edits = new QGridLayout;
    edits->setHorizontalSpacing(captionSpacing);
    edits->setVerticalSpacing(editSpacing);
    edits->addWidget(addressCaption, 0, 0);
    edits->addWidget(port.address, 0, 1);
    edits->addWidget(maskCaption, 1, 0);
    edits->addWidget(port.mask, 1, 1);

    QLabel *caption = createHeading(tr(look.caption), page);
    layout->addWidget(caption);
    layout->addWidget(port.disable);
    layout->addWidget(port.dhcp);
    layout->addWidget(port.manual);
    layout->addLayout(edits);
    layout->addStretch();
}

bool BiosInterface::loadEthernetSettings()
{
    loadEthernetPort(0);
    loadEthernetPort(1);
    return true;
}

void BiosInterface::loadEthernetPort(int lan)
{
    const EthernetPort &port = m_ports.at(size_t(lan));
    const PortSetup stored = storedPort(m_settings, lan);
    setEthernetEditsEnabled(lan, stored.mode == PortMode::Static);
    switch (stored.mode) {
    case PortMode::Disabled:
        port.disable->setChecked(true);
        port.address->clear();
        port.mask->clear();
        break;
    case PortMode::Dhcp:
        port.dhcp->setChecked(true);
        showLiveAddress(lan);
        break;
    case PortMode::Static:
        port.manual->setChecked(true);
        port.address->setText(stored.address);
        port.mask->setText(stored.mask);
        break;
    }
}

/// Shows the address that the port got from DHCP. The settings do not contain it.
void BiosInterface::showLiveAddress(int lan)
{
    const EthernetKeys &keys = ethernetKeys(lan);
    const ToolResult result
        = runTool(addressQueryCommand(keys.interface), {.limit = m_limits.address});
    // The output of a tool that was cut off may be incomplete.
    InterfaceAddress live
        = parseInterfaceAddress(result.hasFinished() ? byteText(result.output) : QString());
    if (live.mask.isEmpty()) {
        live.mask = m_settings.value(keys.mask);
    }
    const EthernetPort &port = m_ports.at(size_t(lan));
    port.address->setText(live.address);
    port.mask->setText(live.mask.isEmpty() ? defaultMask : live.mask);
}

void BiosInterface::setEthernetEditsEnabled(int lan, bool enabled)
{
    const EthernetPort &port = m_ports.at(size_t(lan));
    port.address->setEnabled(enabled);
    port.mask->setEnabled(enabled);
}

PortSetup BiosInterface::shownPort(int lan) const
{
    const EthernetPort &port = m_ports.at(size_t(lan));
    if (port.disable->isChecked()) {
        return {};
    }
    if (port.dhcp->isChecked()) {
        return {PortMode::Dhcp, {}, {}};
    }
    return {PortMode::Static, port.address->text(), port.mask->text()};
}

bool BiosInterface::saveEthernetSettings()
{
    const PortSetups ports{shownPort(0), shownPort(1)};
    for (const int lan : {0, 1}) {
        applyPort(lan, ports.at(size_t(lan)));
    }
    writeINI();
    writeInterfaces(ports);
    return true;
}

void BiosInterface::applyPort(int lan, const PortSetup &port)
{
    switch (port.mode) {
    case PortMode::Disabled:
        m_settings.remove(ethernetKeys(lan).address);
        m_settings.remove(ethernetKeys(lan).mask);
        break;
    case PortMode::Static:
        manualSetIPProcess(port.address, port.mask, lan);
        break;
    case PortMode::Dhcp:
        autoDetectIPProcess(lan);
        break;
    }
}
