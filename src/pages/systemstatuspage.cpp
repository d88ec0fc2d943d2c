#include "shell/biosinterface.h"

#include "system/files/versionfiles.h"
#include "system/output/ifconfigoutput.h"
#include "system/output/tooloutput.h"
#include "system/run/commandline.h"
#include "system/settings/settingskeys.h"
#include "widgets/metrics.h"

#include <QGridLayout>
#include <QLabel>
#include <QStackedWidget>
#include <QToolButton>

namespace {
constexpr int rowSpacing = 40; // px
constexpr char valueNamePrefix[] = "show ";
constexpr char captionSpacer[] = "          :     ";

/// Panels of this OEM show the series before the model.
constexpr char seriesOem[] = "TALMEROQZP";
constexpr char seriesPrefix[] = "TALMERO EK Series:";

constexpr char capacity[] = "/16384M"; // size of the application storage, the same on all panels

QString modelText()
{
    const QString prefix
        = getCurrentRuntimOEM() == QLatin1String(seriesOem) ? seriesPrefix : QString();
    return prefix + getCurrentRuntimeModel().constFirst();
}

QString firmwareText()
{
    const QString version = getCurrentRuntimeVersion();
    return version.isEmpty() ? getCurrentRuntimeVersion() : version;
}

/// A row of the page. A row without a value function starts empty.
struct StatusRow
{
    const char *caption;
    QString (*value)();
};

// Two rows share a caption on purpose: "show BIOS Version" is the object name of both values.
// clang-format off
constexpr StatusRow statusRows[] = {
    {QT_TRANSLATE_NOOP("BiosInterface", "Application Size"),  nullptr},
    {QT_TRANSLATE_NOOP("BiosInterface", "BIOS Version"),      modelText},
    {QT_TRANSLATE_NOOP("BiosInterface", "Firmware Version"),  firmwareText},
    {QT_TRANSLATE_NOOP("BiosInterface", "Manufacturer"),
     [] { return BiosInterface::tr("TALMERO Industrial Panels"); }},
    {QT_TRANSLATE_NOOP("BiosInterface", "Lan1 MAC Address"),  nullptr},
    {QT_TRANSLATE_NOOP("BiosInterface", "Lan2 MAC Address"),  nullptr},
    {QT_TRANSLATE_NOOP("BiosInterface", "BIOS Version"),      getCurrentBIOSVersion},
};
// clang-format on
enum Row { SizeRow, ModelRow, FirmwareRow, ManufacturerRow, FirstPortRow, SecondPortRow, BiosRow };
} // namespace

QPair<QLabel *, QLabel *> BiosInterface::createSystemStatusLabel(const QString &caption)
{
    QWidget *page = m_pages->widget(SystemStatusPage);
    auto *captionLabel = new QLabel(caption + captionSpacer, page);
    captionLabel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto *value = new QLabel(page);
    value->setObjectName(valueNamePrefix + caption);
    value->setWordWrap(true); // a file's text may be longer than a line
    for (QLabel *label : {captionLabel, value}) {
        label->setTextFormat(Qt::PlainText); // the text of a file or tool may look like markup
        setWidgetWithStyle(label);
    }
    return {captionLabel, value};
}

void BiosInterface::initSystemStatusPage()
{
    auto *grid = new QGridLayout;
    grid->setSpacing(rowSpacing);
    const QList<QLabel *> values = createStatusRows(grid);
    m_status = {values.at(SizeRow), values.at(FirmwareRow), values.at(FirstPortRow),
                values.at(SecondPortRow)};
    QVBoxLayout *content = createContent(Metrics::narrowMargin);
    content->addLayout(grid);
    content->addStretch();
    setPageLayout(createTitleBar(tr("System Status"), true, true), content,
                  m_pages->widget(SystemStatusPage));
    loadSystemStatusSettings();
}

/// Adds all rows to @p grid. Returns their value labels in row order.
QList<QLabel *> BiosInterface::createStatusRows(QGridLayout *grid)
{
    QList<QLabel *> values;
    for (int row = 0; row < int(std::size(statusRows)); ++row) {
        const StatusRow &status = statusRows[row];
        const auto [caption, value] = createSystemStatusLabel(tr(status.caption));
        if (status.value != nullptr) {
            value->setText(status.value());
        }
        values += value;
        grid->addWidget(caption, row, 0);
        if (row == BiosRow) {
            auto *cell = new QHBoxLayout;
            cell->addWidget(value);
            cell->addWidget(createUpdateButton());
            grid->addLayout(cell, row, 1);
        } else {
            grid->addWidget(value, row, 1);
        }
    }
    return values;
}

QToolButton *BiosInterface::createUpdateButton()
{
    auto *button = new QToolButton(m_pages->widget(SystemStatusPage));
    button->setText(tr("Update BIOS"));
    button->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Minimum);
    setWidgetWithStyle(button);
    connect(button, &QToolButton::clicked, this, [this] { updateBIOSDialog(); });
    return button;
}

bool BiosInterface::loadSystemStatusSettings()
{
    for (const auto &label : {m_status.applicationSize, m_status.firmwareVersion,
                              m_status.firstAddress, m_status.secondAddress}) {
        if (label.isNull()) {
            return false;
        }
    }
    const QString version = getCurrentRuntimeVersion();
    m_status.firmwareVersion->setText(version.isEmpty() ? QString(" ") : version);
    m_status.firstAddress->setText(hardwareAddress(ethernetKeys(0).interface));
    m_status.secondAddress->setText(hardwareAddress(ethernetKeys(1).interface));
    m_status.applicationSize->setText(applicationSize());
    return true;
}

QString BiosInterface::hardwareAddress(const QString &interface)
{
    return parseHardwareAddress(
        doProcess(addressQueryCommand(interface), m_limits.hardwareAddress).first);
}

QString BiosInterface::applicationSize()
{
    const auto [output, errors] = doProcess(applicationSizeCommand(), noLimit);
    // With any error text the sum may be incomplete: a single unreadable folder causes one.
    return errors.isEmpty() ? diskUsageTotal(output) + capacity : QString(capacity);
}
