#include "inputpanel/platformbridge.h"

#include "inputpanel/myinputpanelcontext.h"

#include <QApplication>
#include <QEvent>
#include <QPointer>
#include <QWidget>
#include <QtPlugin>
#include <qpa/qplatforminputcontext.h>
#include <qpa/qplatforminputcontextplugin_p.h>

namespace {
constexpr char pluginKey[] = "talmeropanel";

QPointer<MyInputPanelContext> installed;

/// Forwards Qt's requests to the installed context, if there is one.
class PanelPlatformInputContext : public QPlatformInputContext
{
public:
    bool isValid() const override { return true; }

    void showInputPanel() override { pass(QEvent::RequestSoftwareInputPanel); }

    void hideInputPanel() override
    {
        // Qt calls this whenever a line edit loses the focus, even if the keypad gets it.
        if (installed != nullptr && QApplication::activeWindow() != installed->panel()) {
            pass(QEvent::CloseSoftwareInputPanel);
        }
    }

    bool isInputPanelVisible() const override
    {
        return installed != nullptr && installed->panel()->isVisible();
    }

private:
    static void pass(QEvent::Type type)
    {
        if (installed != nullptr) {
            const QEvent event(type);
            installed->filterEvent(&event);
        }
    }
};
} // namespace

class PanelInputContextPlugin : public QPlatformInputContextPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QPlatformInputContextFactoryInterface_iid FILE "platformbridge.json")
public:
    QPlatformInputContext *create(const QString &key, const QStringList &) override
    {
        return key == QLatin1String(pluginKey) ? new PanelPlatformInputContext : nullptr;
    }
};

void selectInputContextPlugin()
{
    qputenv("QT_IM_MODULE", pluginKey);
}

void installInputContext(MyInputPanelContext *context)
{
    installed = context;
}

#include "platformbridge.moc"

Q_IMPORT_PLUGIN(PanelInputContextPlugin)
