#pragma once

class QByteArray;
class QString;

/// Makes @p content the whole content of the file at @p path, which keeps its owner and its mode. A
/// symbolic link is followed.
/// Where the file can be replaced, it is the old or the new one whenever the power goes, and never
/// a part. Where it cannot, as in a folder of a read-only file system, where a file is mounted by
/// itself, or on a disk without room for a second one, it is written in place.
/// Result: false if neither worked; the old content is there then, unless the disk itself fails.
/// What is no plain file, a device for example, stays as it is.
bool replaceFile(const QString &path, const QByteArray &content);
