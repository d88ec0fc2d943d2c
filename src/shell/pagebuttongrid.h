#pragma once

#include <QGridLayout>

/// Grid of SettingsButtons that gives all of them the same font size: the largest in which every
/// text fits its button. It must not hold other widgets.
class PageButtonGrid : public QGridLayout
{
    Q_OBJECT
public:
    using QGridLayout::QGridLayout;

    void setGeometry(const QRect &rect) override;
};
