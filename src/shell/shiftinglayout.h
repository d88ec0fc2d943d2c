#pragma once

#include <QVBoxLayout>

/// Vertical layout that can put its contents somewhat lower than its place, without making them
/// smaller: what is at the bottom leaves the window meanwhile.
class ShiftingLayout : public QVBoxLayout
{
    Q_OBJECT
public:
    using QVBoxLayout::QVBoxLayout;

    /// Moves the contents @p shift pixels down from their usual place; 0 brings them back.
    void setShift(int shift);

    void setGeometry(const QRect &rect) override;

private:
    int m_shift = 0; ///< px
};
