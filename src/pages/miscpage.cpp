#include "shell/biosinterface.h"

#include "system/settings/displaychoices.h"
#include "system/settings/settingskeys.h"
#include "widgets/metrics.h"
#include "widgets/radiobutton.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {
constexpr int gridSpacing = 40;    // px
constexpr int tickInterval = 1000; // ms

/// Adds a row of two exclusive radio buttons and checks the first.
void addChoiceRow(QGridLayout *grid, int row, RadioButton *first, RadioButton *second)
{
    auto *group = new QButtonGroup(first->parent());
    group->addButton(first, 0);
    group->addButton(second, 1);
    first->setChecked(true);
    grid->addWidget(first, row, 1);
    grid->addWidget(second, row, 2);
}

/// Selects the item with the data @p data, or keeps the selection if there is none. Skips the
/// first item, which is the default: its value keeps the selection too.
void selectStored(QComboBox *box, const QVariant &data)
{
    for (int index = 1; index < box->count(); ++index) {
        if (box->itemData(index) == data) {
            box->setCurrentIndex(index);
            return;
        }
    }
}
} // namespace

void BiosInterface::initMiscPage()
{
    auto *grid = new QGridLayout;
    grid->setSpacing(gridSpacing);
    createMiscRows(grid);
    QVBoxLayout *content = createContent(Metrics::narrowMargin);
    content->addLayout(grid);
    content->addStretch();
    setPageLayout(createTitleBar(tr("Miscellaneous"), true, true), content,
                  m_pages->widget(MiscPage));
    connect(&m_clockTick, &QTimer::timeout, this, &BiosInterface::slotTimerEdit);
    m_clockTick.setInterval(tickInterval);
}

void BiosInterface::createMiscRows(QGridLayout *grid)
{
    QWidget *page = m_pages->widget(MiscPage);
    const QString captions[]
        = {tr("Mouse : "),         tr("Display Orientation : "),   tr("Buzzer : "),
           tr("Screen Saving : "), tr("Back Light Brightness : "), tr("Time : ")};
    for (int row = 0; row < int(std::size(captions)); ++row) {
        auto *caption = new QLabel(captions[row], page);
        setWidgetWithStyle(caption);
        caption->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        caption->setWordWrap(true); // the long captions do not fit in one line in portrait
        grid->addWidget(caption, row, 0);
    }
    m_misc.mouseEnable = new RadioButton(tr("Enable"), page);
    m_misc.mouseDisable = new RadioButton(tr("Disable"), page);
    addChoiceRow(grid, 0, m_misc.mouseEnable, m_misc.mouseDisable);
    m_misc.landscape = new RadioButton(tr("Landscape"), page);
    m_misc.portrait = new RadioButton(tr("Portrait"), page);
    addChoiceRow(grid, 1, m_misc.landscape, m_misc.portrait);
    m_misc.buzzerEnable = new RadioButton(tr("Enable"), page);
    m_misc.buzzerDisable = new RadioButton(tr("Disable"), page);
    addChoiceRow(grid, 2, m_misc.buzzerEnable, m_misc.buzzerDisable);
    m_misc.screenSaving = new QComboBox(page);
    for (const DelayItem &item : delayItems) {
        m_misc.screenSaving->addItem(tr(item.text), item.minutes);
    }
    grid->addWidget(m_misc.screenSaving, 3, 1, 1, 2);
    m_misc.brightness = new QComboBox(page);
    for (const BrightnessItem &item : brightnessItems) {
        m_misc.brightness->addItem(tr(item.text), QString(QLatin1String(item.factor)));
    }
    m_misc.brightness->setMaxVisibleItems(m_misc.brightness->count());
    grid->addWidget(m_misc.brightness, 4, 1, 1, 2);
    m_misc.time = new QDateTimeEdit(QDateTime::currentDateTime(), page);
    grid->addWidget(m_misc.time, 5, 1, 1, 2);
}

bool BiosInterface::loadMiscSettings()
{
    const bool mouse = !m_settings.value(SettingsKeys::mouse).isEmpty();
    (mouse ? m_misc.mouseEnable : m_misc.mouseDisable)->setChecked(true);
    if (!m_settings.value(SettingsKeys::buzzer).isEmpty()) {
        // Not setChecked(), on purpose: panels keep the current choice here.
        m_misc.buzzerEnable->setCheckable(true);
    } else {
        m_misc.buzzerDisable->setChecked(true);
    }
    const QString orientation = m_settings.value(SettingsKeys::orientation).simplified().toLower();
    const bool upright = orientation == QLatin1String("vertical");
    (upright ? m_misc.portrait : m_misc.landscape)->setChecked(true);

    const QString delay = m_settings.value(SettingsKeys::screenSaving);
    if (delay.isEmpty()) {
        m_misc.screenSaving->setCurrentIndex(0);
    } else {
        selectStored(m_misc.screenSaving, delay.toInt());
    }
    const QString brightness = m_settings.value(SettingsKeys::brightness);
    if (brightness.isEmpty()) {
        m_misc.brightness->setCurrentIndex(0);
    } else {
        selectStored(m_misc.brightness, brightness);
    }
    m_misc.time->setDateTime(QDateTime::currentDateTime());
    m_clockTick.start();
    return true;
}

void BiosInterface::slotTimerEdit()
{
    m_misc.time->setDateTime(m_misc.time->dateTime().addSecs(1));
}

bool BiosInterface::saveMiscSettings()
{
    storeFlag(SettingsKeys::mouse, !m_misc.mouseDisable->isChecked());
    storeFlag(SettingsKeys::buzzer, !m_misc.buzzerDisable->isChecked());
    m_settings.insert(SettingsKeys::orientation,
                      QLatin1String(m_misc.landscape->isChecked() ? "horizontal" : "vertical"));
    const int delay = m_misc.screenSaving->currentData().toInt();
    storeOrRemove(SettingsKeys::screenSaving, delay != 0 ? QString::number(delay) : QString());
    storeOrRemove(SettingsKeys::brightness, m_misc.brightness->currentData().toString());
    writeINI();
    setScreenSaving();
    setScreenOrientation();
    setBackLighting();
    setSystemTime();
    return true;
}

/// Stores "1" if @p on is set. Removes the key otherwise.
void BiosInterface::storeFlag(const QString &key, bool on)
{
    storeOrRemove(key, on ? QString("1") : QString());
}

void BiosInterface::storeOrRemove(const QString &key, const QString &value)
{
    if (value.isEmpty()) {
        m_settings.remove(key);
    } else {
        m_settings.insert(key, value);
    }
}
