#pragma once

class QByteArray;
class QString;

/// Makes @p content the whole content of the file at @p path such that, whenever the power goes,
/// the file is the old or the new one and never a part. A symbolic link is followed.
/// Result: false if that failed; the old file is there then.
bool replaceFile(const QString &path, const QByteArray &content);
