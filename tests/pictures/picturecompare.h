#pragma once

#include <QRect>

class QImage;

/// Where a user sees something else in @p shown than in @p stored; empty if nowhere. Pictures of
/// different sizes differ as a whole.
///
/// Both are smoothed a little. A pixel counts as the same if its colour lies between those that
/// the other picture has there and next to it; what is missing to that is compared square by
/// square in the mean, both ways. So text that another version of the font renderer smooths in
/// another way or sets a pixel aside, and a picture with fewer colours, are the same. What moves by
/// more, another letter and another colour are not.
QRect changedArea(const QImage &shown, const QImage &stored);
