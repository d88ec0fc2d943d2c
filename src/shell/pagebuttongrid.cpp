#include "shell/pagebuttongrid.h"

#include "widgets/settingsbutton.h"

#include <algorithm>

void PageButtonGrid::setGeometry(const QRect &rect)
{
    QGridLayout::setGeometry(rect);
    QList<SettingsButton *> buttons;
    for (int index = 0; index < count(); ++index) {
        buttons += static_cast<SettingsButton *>(itemAt(index)->widget());
    }
    const QFont pageFont = parentWidget()->font();
    int pixelSize = pageFont.pixelSize();
    for (const SettingsButton *button : std::as_const(buttons)) {
        pixelSize = std::min(pixelSize, button->fittingPixelSize(pageFont));
    }
    for (SettingsButton *button : std::as_const(buttons)) {
        button->setFontPixelSize(pixelSize);
    }
}
