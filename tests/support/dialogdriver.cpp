#include "dialogdriver.h"

#include <QApplication>
#include <QPushButton>
#include <QTest>

namespace {
constexpr int lookInterval = 20;      // ms
constexpr int longestOpenTicks = 150; // intervals
} // namespace

DialogDriver::DialogDriver(std::function<void(QDialog &)> user)
    : m_user(std::move(user))
{
    QObject::connect(&m_look, &QTimer::timeout, &m_look, [this] { look(); });
    m_look.start(lookInterval);
}

void DialogDriver::look()
{
    auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (dialog == nullptr || !dialog->isVisible()) {
        return;
    }
    if (dialog == m_known) {
        if (++m_ticksOpen == longestOpenTicks) {
            dialog->reject();
        }
        return;
    }
    m_known = dialog;
    m_ticksOpen = 0;
    ++m_count;
    m_user(*dialog);
}

void clickButton(const QDialog &dialog, const QString &text)
{
    for (auto *button : dialog.findChildren<QPushButton *>()) {
        if (button->text() == text) {
            QTest::mouseClick(button, Qt::LeftButton);
            return;
        }
    }
    qFatal("no button %s", qPrintable(text));
}
