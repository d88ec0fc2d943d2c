#pragma once

#include <QByteArray>
#include <QString>

class QIODevice;

/// The state of a package's archive.
struct ArchiveState
{
    bool known = false;      ///< false: the tools could not be run to the end
    bool gzipWhole = false;  ///< with nothing behind it
    bool tarWhole = false;   ///< with the two empty blocks at its end
    qint64 unpackedSize = 0; ///< bytes of the tar archive, as far as it could be unpacked
    QByteArray listing;      ///< what "tar -tv" prints
};

/// What "tar -tvR" prints of an archive.
struct TarListing
{
    QByteArray members; ///< as "tar -tv" prints them
    bool ended = false; ///< tar has met the empty block that ends an archive, not just no more data
};

/// Takes the block numbers and tar's lines about the end off the output of "tar -tvR". Names in
/// it must be quoted, so that none can look like such a line.
TarListing parseTarListing(const QByteArray &output);

/// Writes what is in the package file at @p path to @p out, and what is wrong with it to
/// @p errors. Result: an ExitStatus: Done if it is whole and of a known kind.
int showPackage(const QString &path, QIODevice &out, QIODevice &errors);
