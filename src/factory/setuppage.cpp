#include "factory/softwaresetup.h"

#include "system/files/atomicfile.h"
#include "system/files/versionfiles.h"
#include "system/formats/networkfiles.h"
#include "system/output/ifconfigoutput.h"
#include "system/paths.h"
#include "system/run/commandline.h"
#include "system/run/factorycommand.h"
#include "system/run/process.h"

#include <QComboBox>
#include <QDateTimeEdit>
#include <QHBoxLayout>

namespace {
constexpr const char *models[] = {"K25T", "K21T", "K25", "K21", "K07"};
constexpr char typeWithSession[] = QT_TRANSLATE_NOOP("SoftwareSetup", "HMI");
constexpr const char *types[] = {QT_TRANSLATE_NOOP("SoftwareSetup", "Panel PC"), typeWithSession};
} // namespace

void SoftwareSetup::initSetupPage()
{
    QVBoxLayout *page = addPage();
    m_model = new QComboBox;
    for (const char *model : models) {
        m_model->addItem(QLatin1String(model));
    }
    addRow(page, tr("Model:"))->addWidget(m_model);
    m_type = new QComboBox;
    for (const char *type : types) {
        m_type->addItem(tr(type));
    }
    addRow(page, tr("Type:"))->addWidget(m_type);
    m_time = new QDateTimeEdit(QDateTime::currentDateTime());
    addRow(page, tr("Time:"))->addWidget(m_time);
}

void SoftwareSetup::slotAccept()
{
    if (m_type->currentText() != tr(typeWithSession)) {
        runAndWait(sessionAsideCommand(), m_limits.tool);
    }
    runAndWait(removeFileCommand(Paths::modelFile), m_limits.tool);
    setCurrentRuntimeModel(m_model->currentText());
    runAndWait(clockCommand(m_time->dateTime()), m_limits.tool);
    runAndWait(hardwareClockCommand(), m_limits.tool);
    nameInterfaces();
}

/// Leaves the rules unchanged if the interfaces cannot be listed.
void SoftwareSetup::nameInterfaces()
{
    const ToolResult list = runTool(interfaceListCommand(), {.limit = m_limits.interfaceList});
    if (!list.hasFinished()) {
        return;
    }
    const QStringList addresses = hardwareAddresses(QString::fromLocal8Bit(list.output));
    runAndWait(removeFileCommand(Paths::namingRulesFile), m_limits.tool);
    replaceFile(Paths::namingRulesFile, interfaceNamingRules(addresses).toLocal8Bit());
}
