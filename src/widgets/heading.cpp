#include "widgets/heading.h"

#include <QLabel>

namespace {
constexpr int maximumHeight = 50; // px
constexpr QColor color(192, 104, 31);
} // namespace

QLabel *createHeading(const QString &text, QWidget *parent)
{
    auto *heading = new QLabel(text, parent);
    QPalette palette = heading->palette();
    palette.setColor(QPalette::WindowText, color);
    heading->setPalette(palette);
    QFont font = heading->font();
    font.setItalic(true);
    heading->setFont(font);
    heading->setMaximumHeight(maximumHeight);
    return heading;
}
