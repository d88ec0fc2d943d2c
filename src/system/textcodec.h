#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QStringList>

/// Text of UTF-8 bytes, such that bytesFromText() gives the same bytes back whatever they are.
/// A byte b that is no part of valid UTF-8 becomes the lone surrogate U+DC00 + b, which valid
/// text never holds.
QString textFromBytes(QByteArrayView bytes);

/// The bytes that textFromBytes() made @p text of; UTF-8 for any other text.
QByteArray bytesFromText(const QString &text);

/// The arguments of a program without its own name. Those that the application object gives have
/// lost the bytes that are no text.
QStringList argumentTexts(int count, const char *const *arguments);
