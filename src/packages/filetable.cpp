#include "packages/filetable.h"

#include "widgets/metrics.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QMouseEvent>
#include <QScroller>
#include <QStyledItemDelegate>
#include <QTableWidget>

#include <algorithm>

namespace {
constexpr int rowPadding = 12; // px

/// Shows names that contain line feeds or other unprintable characters.
class NameDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QString displayText(const QVariant &value, const QLocale &) const override
    {
        return printableName(value.toString());
    }
};

/// Turns a double click back into two taps. Qt combines two quick taps into a double click, and
/// the table ignores its second press.
class EveryTapCounts : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::MouseButtonDblClick) {
            return false;
        }
        const auto *second = static_cast<QMouseEvent *>(event);
        QMouseEvent press(QEvent::MouseButtonPress, second->position(), second->globalPosition(),
                          second->button(), second->buttons(), second->modifiers());
        QCoreApplication::sendEvent(watched, &press);
        return true;
    }
};

/// Uses the left button because the panel's touch controller is a pointer with one button.
void scrollByFinger(QTableWidget *table)
{
    table->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    QScroller::grabGesture(table->viewport(), QScroller::LeftMouseButtonGesture);
    QScroller *scroller = QScroller::scroller(table->viewport());
    QScrollerProperties properties = scroller->scrollerProperties();
    for (const auto metric : {QScrollerProperties::HorizontalOvershootPolicy,
                              QScrollerProperties::VerticalOvershootPolicy}) {
        properties.setScrollMetric(metric, QScrollerProperties::OvershootAlwaysOff);
    }
    scroller->setScrollerProperties(properties);
}

QTableWidgetItem *createItem(const QString &folder, const QString &name)
{
    auto *item = new QTableWidgetItem(name);
    item->setData(Qt::UserRole, QString(folder + name));
    item->setFlags(item->flags() & ~Qt::ItemIsEditable);
    return item;
}
} // namespace

void setUpFileTable(QTableWidget *table)
{
    QHeaderView *rows = table->verticalHeader();
    rows->hide();
    rows->setSectionResizeMode(QHeaderView::Fixed);
    rows->setDefaultSectionSize(
        std::max(Metrics::fingerHeight, table->fontMetrics().height() + rowPadding));
    table->horizontalHeader()->hide();
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table->setItemDelegate(new NameDelegate(table));
    table->setWordWrap(false);
    table->setTextElideMode(Qt::ElideMiddle); // the file name is at the end
    table->viewport()->installEventFilter(new EveryTapCounts(table));
    scrollByFinger(table);
}

void showFiles(QTableWidget *table, const QString &folder, const QStringList &names)
{
    table->setRowCount(0);
    table->setRowCount(int(names.size()));
    for (int row = 0; row < names.size(); ++row) {
        table->setItem(row, 0, createItem(folder, names.at(row)));
        if (table->columnCount() > 1) {
            table->setSpan(row, 0, 1, table->columnCount());
        }
    }
}

QString filePath(const QTableWidgetItem *item)
{
    return item->data(Qt::UserRole).toString();
}

QString printableName(const QString &name)
{
    QString shown = name;
    for (qsizetype at = 0; at < shown.size(); ++at) {
        const QStringView rest = QStringView(shown).mid(at);
        if (rest.size() > 1 && rest[0].isHighSurrogate() && rest[1].isLowSurrogate()) {
            ++at; // a surrogate pair is one character
        } else if (!rest[0].isPrint()) {
            shown[at] = QChar::ReplacementCharacter; // also for invalid UTF-8
        }
    }
    return shown;
}
