#pragma once

#include <QSet>
#include <QString>

/// Takes pictures of the screen and compares them with those that are stored.
class PictureBook
{
public:
    /// A picture that differs from the one in the folder @p stored is left in the folder
    /// @p changed.
    PictureBook(const QString &stored, const QString &changed);

    /// Takes the picture @p name of the whole screen as soon as the screen has come to rest.
    void take(const QString &name);

    /// Tells of the stored pictures that nobody took.
    /// Result: how many pictures are changed, new or not taken.
    int finish();

private:
    QString m_stored;
    QString m_changed;
    QSet<QString> m_taken;
    int m_differences = 0;
};

/// Takes the pictures of the settings window with its dialogs, then those of the factory window.
void takeSettingsPictures(PictureBook &book);
void takeFactoryPictures(PictureBook &book);
