#pragma once

#include <QDialog>
#include <QPointer>
#include <QTimer>

#include <functional>

/// Acts as the user of each modal dialog during its lifetime. A dialog that is still open after
/// 3 s is rejected, so that the test continues.
class DialogDriver
{
public:
    /// @p user is called once for each dialog, when it is shown.
    explicit DialogDriver(std::function<void(QDialog &)> user);

    /// The number of dialogs so far.
    int count() const { return m_count; }

private:
    void look();

    std::function<void(QDialog &)> m_user;
    QTimer m_look;
    QPointer<QDialog> m_known;
    int m_ticksOpen = 0;
    int m_count = 0;
};

/// Clicks the push button of @p dialog with this text. The test program ends if there is none.
void clickButton(const QDialog &dialog, const QString &text);
