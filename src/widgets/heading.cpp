#include "widgets/heading.h"

#include "widgets/metrics.h"

#include <QLabel>

namespace {
constexpr int maximumHeight = 50; // px
} // namespace

QLabel *createHeading(const QString &text, QWidget *parent)
{
    auto *heading = new QLabel(text, parent);
    QPalette palette = heading->palette();
    palette.setColor(QPalette::WindowText, Metrics::orange);
    heading->setPalette(palette);
    QFont font = heading->font();
    font.setItalic(true);
    heading->setFont(font);
    heading->setMaximumHeight(maximumHeight);
    return heading;
}
