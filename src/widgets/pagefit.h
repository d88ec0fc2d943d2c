#pragma once

#include <QList>
#include <QPointer>

#include <functional>
#include <optional>

class QGridLayout;
class QWidget;

/// Makes the contents of a page fit the page. On a page with enough room everything has the size
/// that it was built with, and whatever a finger hits is at least 44 pixels high. On a smaller one
/// these give way, by no more than needed and in this order: the height of the rows, the spacing
/// of the grids, the fonts. All fonts of the page shrink in proportion, to no less than 16 pixels.
/// The title bar keeps its fonts.
class PageFit
{
public:
    /// @p page has its layout and all its contents, in the fonts of a page with enough room.
    explicit PageFit(QWidget *page);

    /// Lays the page out anew in its present size. Of the row heights that fit, the largest one
    /// for which @p wanted says yes is taken, or the largest of all if there is none.
    void fit(const std::function<bool()> &wanted);

private:
    /// What can give way, in pixels.
    struct Look
    {
        int font = 0; ///< of the page; captions and edits shrink with it
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
