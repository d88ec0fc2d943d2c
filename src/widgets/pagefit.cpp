#include "widgets/pagefit.h"

#include "widgets/metrics.h"
#include "widgets/radiobutton.h"
#include "widgets/settingsbutton.h"

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QStyle>

#include <algorithm>

namespace {
constexpr int smallestSpacing = 12; // px; still separates the rows
constexpr int readableFont = 16;    // px; readable at arm's length
constexpr int fieldFrame = 4;       // px above and below the text of a combo box or time editor
constexpr QSize editFrame(6, 3);    // px on each side of the text of a line edit
constexpr char widestAddress[] = "255.255.255.255";

bool isField(const QWidget *widget)
{
    return qobject_cast<const QComboBox *>(widget) != nullptr
        || qobject_cast<const QAbstractSpinBox *>(widget) != nullptr;
}

bool isEdit(const QWidget *widget)
{
    return qobject_cast<const QLineEdit *>(widget) != nullptr;
}

bool isRow(const QWidget *widget)
{
    return isField(widget) || isEdit(widget)
        || qobject_cast<const RadioButton *>(widget) != nullptr;
}

/// Returns the smallest height in pixels that does not cut the text or indicator of a row.
int smallestRowHeight(const QWidget *row)
{
    const int text = row->fontMetrics().height();
    if (isField(row)) {
        return text + 2 * fieldFrame;
    }
    if (isEdit(row)) {
        return text + 2 * editFrame.height();
    }
    return std::max(text, row->style()->pixelMetric(QStyle::PM_ExclusiveIndicatorHeight));
}

/// Returns the width in pixels of the longest word of a caption. The final colon counts with the
/// word before it, so that it never gets a line of its own.
int longestWord(const QLabel *label)
{
    int width = 0;
    QString text = label->text();
    text.replace(QLatin1String(" : "), QString(QChar::Nbsp) + ':' + QChar::Nbsp);
    for (const QString &word : text.split(' ')) {
        width = std::max(width, label->fontMetrics().horizontalAdvance(word));
    }
    return width;
}

int neededWidth(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget); label && label->wordWrap()) {
        return longestWord(label);
    }
    if (qobject_cast<const QAbstractItemView *>(widget) != nullptr) {
        return 0; // it scrolls
    }
    if (isEdit(widget)) {
        return widget->fontMetrics().horizontalAdvance(widestAddress) + 2 * editFrame.width();
    }
    return widget->minimumSizeHint().width();
}

int neededHeight(const QWidget *widget)
{
    if (qobject_cast<const QAbstractItemView *>(widget) != nullptr) {
        return 0;
    }
    if (isRow(widget)) {
        return smallestRowHeight(widget);
    }
    if (widget->hasHeightForWidth()) {
        return widget->heightForWidth(widget->width());
    }
    return widget->minimumSizeHint().height();
}

void setFontSize(QWidget *widget, int pixelSize)
{
    QFont font = widget->font();
    font.setPixelSize(pixelSize);
    widget->setFont(font);
}

/// Sets no minimum for line edits: their own height is less than that of other rows.
void setRowHeight(QWidget *row, int height)
{
    row->setMaximumHeight(height);
    if (!isEdit(row)) {
        row->setMinimumHeight(height);
    }
}

/// Returns the largest value between @p least and @p most that fits. Assumes that @p least fits,
/// and that if a value fits all smaller values do.
template <typename Fits> int largest(int most, int least, Fits fits)
{
    while (most > least) {
        const int middle = most - (most - least) / 2;
        if (fits(middle)) {
            least = middle;
        } else {
            most = middle - 1;
        }
    }
    return least;
}
} // namespace

PageFit::PageFit(QWidget *page)
    : m_page(page)
{
    int smallest = page->font().pixelSize();
    for (QWidget *widget : page->findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
        if (qobject_cast<SettingsButton *>(widget) == nullptr) { // skips the title bar
            m_texts += {widget, widget->font().pixelSize()};
            smallest = std::min(smallest, m_texts.constLast().pixelSize);
        }
    }
    for (auto *layout : page->layout()->findChildren<QGridLayout *>()) {
        m_grids += {layout, layout->horizontalSpacing(), layout->verticalSpacing()};
        m_full.columnSpacing = std::max(m_full.columnSpacing, layout->horizontalSpacing());
        m_full.rowSpacing = std::max(m_full.rowSpacing, layout->verticalSpacing());
    }
    m_full.rowHeight = Metrics::fingerHeight;
    m_full.font = page->font().pixelSize();
    m_smallestFont = (readableFont * m_full.font + smallest - 1) / smallest;
}

void PageFit::fit(const std::function<bool()> &wanted)
{
    m_texts.removeIf([](const Text &text) { return text.widget.isNull(); });
    if (fitsWidth(m_full) && fitsHeight(m_full) && wanted()) {
        return; // most screens need no search
    }
    std::optional<Look> look;
    for (int font = m_full.font; !look && font >= m_smallestFont; --font) {
        look = findLook(font, wanted);
    }
    // If nothing fits, a word is wider than the page and will be cut.
    apply(look.value_or(Look{m_smallestFont, 0, smallestSpacing, smallestSpacing}));
}

/// Returns the most spacious look with this font size, or nothing if the contents do not fit.
std::optional<PageFit::Look> PageFit::findLook(int font, const std::function<bool()> &wanted)
{
    Look look{font, 0, smallestSpacing, smallestSpacing};
    if (!fitsWidth(look)) {
        return std::nullopt;
    }
    look.columnSpacing = largest(m_full.columnSpacing, smallestSpacing, [&](int spacing) {
        look.columnSpacing = spacing;
        return fitsWidth(look);
    });
    if (!fitsHeight(look)) {
        return std::nullopt;
    }
    look.rowSpacing = largest(m_full.rowSpacing, smallestSpacing, [&](int spacing) {
        look.rowSpacing = spacing;
        // The width, too: a layout in a cell inherits the spacing of a grid where both are equal.
        return fitsWidth(look) && fitsHeight(look);
    });
    look.rowHeight = findRowHeight(look, wanted);
    return look;
}

int PageFit::findRowHeight(Look look, const std::function<bool()> &wanted)
{
    const int most = largest(m_full.rowHeight, 0, [&](int height) {
        look.rowHeight = height;
        return fitsHeight(look);
    });
    for (look.rowHeight = most; look.rowHeight >= readableFont; --look.rowHeight) {
        apply(look);
        if (wanted()) {
            return look.rowHeight;
        }
    }
    return most;
}

void PageFit::apply(const Look &look)
{
    for (const Text &text : std::as_const(m_texts)) {
        setFontSize(text.widget, text.pixelSize * look.font / m_full.font);
        if (isRow(text.widget)) {
            setRowHeight(text.widget, std::max(look.rowHeight, smallestRowHeight(text.widget)));
        }
    }
    for (const Grid &grid : std::as_const(m_grids)) {
        grid.layout->setHorizontalSpacing(std::min(look.columnSpacing, grid.columnSpacing));
        grid.layout->setVerticalSpacing(std::min(look.rowSpacing, grid.rowSpacing));
    }
    m_page->layout()->activate();
}

bool PageFit::fitsWidth(const Look &look)
{
    apply(look);
    return m_page->layout()->totalMinimumSize().width() <= m_page->width()
        && std::all_of(m_texts.cbegin(), m_texts.cend(), [](const Text &text) {
               return text.widget->width() >= neededWidth(text.widget);
           });
}

bool PageFit::fitsHeight(const Look &look)
{
    apply(look);
    const QLayout *layout = m_page->layout();
    const int needed = layout->hasHeightForWidth()
        ? layout->totalMinimumHeightForWidth(m_page->width())
        : layout->totalMinimumSize().height();
    // The layout uses the minimum height of line edits, which is less than their text needs.
    return needed <= m_page->height()
        && std::all_of(m_texts.cbegin(), m_texts.cend(), [](const Text &text) {
               return text.widget->height() >= neededHeight(text.widget);
           });
}
