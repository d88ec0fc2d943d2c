#pragma once

#include <QDialog>
#include <QPointer>
#include <QTimer>

#include <functional>

/// Does what the user does in each dialog that the program runs modally while this lives. A
/// dialog that is open all the same some seconds later is rejected, so that the test goes on.
class DialogDriver
{
public:
    /// @p user is called once for each dialog, when it is shown.
    explicit DialogDriver(std::function<void(QDialog &)> user);

    /// How many dialogs were shown.
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
