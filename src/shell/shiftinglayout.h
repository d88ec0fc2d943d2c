#pragma once

#include <QVBoxLayout>

/// Vertical layout that can move its contents down without resizing them. The lower part of the
/// contents is then outside the window.
class ShiftingLayout : public QVBoxLayout
{
    Q_OBJECT
public:
    using QVBoxLayout::QVBoxLayout;

    /// Moves the contents @p shift pixels below their usual place; 0 moves them back.
    void setShift(int shift);

    void setGeometry(const QRect &rect) override;

private:
    int m_shift = 0; ///< px
};
