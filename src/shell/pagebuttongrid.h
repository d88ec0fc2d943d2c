#pragma once

#include <QGridLayout>

/// Grid of page buttons that keeps their texts alike: where one text needs a smaller font to fit
/// its button, all of them get it. Holds SettingsButtons only.
class PageButtonGrid : public QGridLayout
{
    Q_OBJECT
public:
    using QGridLayout::QGridLayout;

    void setGeometry(const QRect &rect) override;
};
