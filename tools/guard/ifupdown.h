#pragma once

#include <QByteArray>
#include <QString>

namespace Guard {
/// Whether ifupdown cannot read its file at @p path. Result: false if ifupdown is missing or does
/// not answer within 5 s, because then nothing is known against the file.
bool isRefused(const QString &path);

/// The same for a file with the content @p text.
bool isTextRefused(const QByteArray &text);
} // namespace Guard
