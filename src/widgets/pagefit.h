#pragma once

#include <QList>
#include <QPointer>

#include <functional>
#include <optional>

class QGridLayout;
class QWidget;

/// Makes the contents of a page fit the page. On a large page every widget keeps its original
/// size, and rows are at least 44 pixels high. On a smaller page PageFit shrinks the row heights
/// first, then the spacing of the grids, then the fonts, each by no more than needed. All fonts of
/// the page shrink in proportion, to no less than 16 pixels. The title bar keeps its fonts.
class PageFit
{
public:
    /// Records the original sizes. @p page must already have its layout and all its widgets.
    explicit PageFit(QWidget *page);

    /// Fits the contents to the page's current size. Chooses the largest row height that fits and
    /// for which @p wanted returns true. Chooses the largest that fits if there is none.
    void fit(const std::function<bool()> &wanted);

private:
    /// The sizes that can shrink, in pixels.
    struct Look
    {
        int font = 0; ///< of the page; the other fonts shrink in proportion
        int rowHeight = 0;
        int columnSpacing = 0;
        int rowSpacing = 0;
    };
    struct Text
    {
        QPointer<QWidget> widget;
        int pixelSize;
    };
    struct Grid
    {
        QGridLayout *layout;
        int columnSpacing;
        int rowSpacing;
    };

    std::optional<Look> findLook(int font, const std::function<bool()> &wanted);
    int findRowHeight(Look look, const std::function<bool()> &wanted);
    void apply(const Look &look);
    bool fitsWidth(const Look &look);
    bool fitsHeight(const Look &look);

    QWidget *m_page;
    QList<Text> m_texts;
    QList<Grid> m_grids;
    Look m_full;
    int m_smallestFont = 0;
};
