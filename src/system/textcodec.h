#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QStringList>

/// Decodes UTF-8 without loss: bytesFromText() restores any bytes. A byte b that is not valid UTF-8
/// becomes the lone surrogate U+DC00 + b, which valid text never contains.
QString textFromBytes(QByteArrayView bytes);

/// Encodes @p text as UTF-8 and restores the bytes that textFromBytes() could not decode.
QByteArray bytesFromText(const QString &text);

/// The arguments of a program without its own name. QCoreApplication::arguments() would lose bytes
/// that are not valid UTF-8.
QStringList argumentTexts(int count, const char *const *arguments);
