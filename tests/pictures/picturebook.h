#pragma once

#include <QSet>
#include <QString>

class QColor;

/// Which pictures a book takes.
enum class Extent {
    Everything,
    Layouts, ///< leaves out details, which look alike on all screens
};

/// Takes pictures of the screen and compares them with those that are stored.
class PictureBook
{
public:
    /// A picture that differs from the one in the folder @p stored is left in the folder
    /// @p changed.
    PictureBook(const QString &stored, const QString &changed, Extent extent);

    /// Takes the picture @p name of the whole screen as soon as the screen has come to rest.
    /// The program ends if the screen does not come to rest or the picture cannot be written.
    void take(const QString &name);

    /// Like take(), for a state that differs from that of another picture in its content alone.
    /// Does nothing if the book takes only layouts.
    void takeDetail(const QString &name);

    /// Counts a difference unless every pixel of the screen gets the colour @p color; no picture
    /// of it is stored. @p name is used in the message.
    void expectColor(const QString &name, const QColor &color);

    /// Lists the stored pictures that were not taken.
    /// Result: how many pictures are changed, new or not taken, or not of the expected colour.
    int finish();

private:
    QString m_stored;
    QString m_changed;
    Extent m_extent;
    QSet<QString> m_taken;
    int m_differences = 0;
};

/// Takes the pictures of the settings window with its dialogs, then those of the factory window.
void takeSettingsPictures(PictureBook &book);
void takeFactoryPictures(PictureBook &book);
