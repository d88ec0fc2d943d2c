#pragma once

class QByteArray;
class QString;

/// Replaces the content of the file at @p path with @p content. The file keeps its owner and its
/// mode. Symbolic links are followed. Anything but a plain file, such as a device, is refused.
/// The file is replaced atomically: after a power failure it has the old or the new content. It is
/// written in place where that is impossible: in a folder of a read-only file system, if the file
/// itself is a mount point, or if the disk has no room for a second copy.
/// Result: false if both ways failed. The file then has its old content unless the disk failed.
bool replaceFile(const QString &path, const QByteArray &content);
