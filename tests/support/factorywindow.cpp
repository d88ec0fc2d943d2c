#include "factorywindow.h"

#include "factory/softwaresetup.h"
#include "panelguard.h"
#include "widgets/touchstyle.h"

#include <QApplication>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QTest>
#include <QTextEdit>

FactoryWindow::FactoryWindow(const QStringList &tools, const ToolLimits &limits)
    : m_tools(QStringList{"sleep", "xCal"} + tools)
{
    requirePanel();
    QApplication::setStyle(new TouchStyle);
    m_window = std::make_unique<SoftwareSetup>(nullptr, limits);
    m_callsAtStart = m_tools.calls().size();
    m_tools.setBody("sleep", "exec /usr/bin/sleep \"$@\"");
    m_window->show();
}

FactoryWindow::~FactoryWindow() = default;

SoftwareSetup *FactoryWindow::window() const
{
    return m_window.get();
}

const FakeTools &FactoryWindow::tools() const
{
    return m_tools;
}

QWidget *FactoryWindow::page(int index) const
{
    const auto *pages = m_window->findChild<QStackedWidget *>();
    return qobject_cast<QScrollArea *>(pages->widget(index))->viewport();
}

QStringList FactoryWindow::calls() const
{
    return m_tools.calls().mid(m_callsAtStart);
}

QPushButton *FactoryWindow::button(const QString &text, int number) const
{
    for (QPushButton *button : m_window->findChildren<QPushButton *>()) {
        if (button->text() == text && number-- == 0) {
            return button;
        }
    }
    qFatal("the factory window has no button \"%s\"", qPrintable(text));
}

void FactoryWindow::click(const QString &text, int number) const
{
    QTest::mouseClick(button(text, number), Qt::LeftButton);
}

QString FactoryWindow::result() const
{
    return m_window->findChild<QTextEdit *>("resultView")->toPlainText();
}

void FactoryWindow::close()
{
    m_window.reset();
}
