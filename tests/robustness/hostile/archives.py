"""The parts of hostile packages: headers, gzip streams, tar members."""
import gzip
import struct
import tarfile

HEADER_SIZE = 36
BLOCK = tarfile.BLOCKSIZE
END = bytes(2 * BLOCK)  # of a tar archive

APPLICATION, FIRMWARE, BIOS_IMAGE = 0, 1, 4
# Versions and names of the panel that the packages are for.
RUNTIME_VERSION, BIOS_VERSION = 12, 3
MODEL, OEM = b"RV-K21T", b"TALMERO"


def header(kind=APPLICATION, version=RUNTIME_VERSION, target=MODEL):
    return struct.pack("<II12x16s", kind, version, target)


def gz(data, level=9):
    return gzip.compress(data, level, mtime=0)


def member(name, data=b"", kind=tarfile.REGTYPE, link="", mode=0o644, **fields):
    """A tar member with any name, even one that tar would not write."""
    info = tarfile.TarInfo(name)
    info.size = len(data)
    info.type = kind
    info.linkname = link
    info.mode = mode
    info.mtime = 946684800
    for field, value in fields.items():
        setattr(info, field, value)
    return info.tobuf(tarfile.GNU_FORMAT, "utf-8", "surrogateescape") + padded(data)


def padded(data):
    return data + bytes(-len(data) % BLOCK)


def folder(name, mode=0o755):
    return member(name, kind=tarfile.DIRTYPE, mode=mode)


def symlink(name, target):
    return member(name, kind=tarfile.SYMTYPE, link=target, mode=0o777)


def hardlink(name, target):
    return member(name, kind=tarfile.LNKTYPE, link=target)


def device(name, kind, major, minor):
    return member(name, kind=kind, devmajor=major, devminor=minor)


def pax(records, data):
    """An extended header with these records, followed by the member data."""
    lines = b""
    for key, value in records:
        length = len(key) + len(value) + 3
        while len(b"%d" % length) + len(key) + len(value) + 3 != length:
            length = len(b"%d" % length) + len(key) + len(value) + 3
        lines += b"%d %s=%s\n" % (length, key, value)
    return member("pax", lines, tarfile.XHDTYPE) + data


def patched(data, offset, field, checked=True):
    """Changes the first tar header of data. Corrects its checksum only if checked."""
    block = bytearray(data[:BLOCK])
    block[offset:offset + len(field)] = field
    if checked:
        block[148:156] = b" " * 8
        block[148:156] = b"%06o\0 " % sum(block)
    return bytes(block) + data[BLOCK:]


def base256(number, size):
    """A field of a tar header with a number that is too large for octal digits."""
    return b"\x80" + number.to_bytes(size - 1, "big")


def archive(*members):
    return gz(b"".join(members) + END)


def many_members(count):
    """A folder with count empty files. tarfile would take seconds to make them."""
    pattern = bytearray(member("many/000000"))
    start, rest = bytes(pattern[:5]), bytes(pattern[11:148])
    tail = bytes(pattern[156:])
    base = sum(pattern[:5]) + sum(rest) + 8 * ord(" ") + sum(tail)
    blocks = []
    for number in range(count):
        digits = b"%06d" % number
        blocks.append(b"%b%b%b%06o\0 %b" % (start, digits, rest, base + sum(digits), tail))
    return folder("many") + b"".join(blocks)


def zeros(megabytes):
    """A compressed member of zeros. One compressed megabyte is repeated, which is fast."""
    info = tarfile.TarInfo("zeros")
    info.size = megabytes << 20
    head = info.tobuf(tarfile.GNU_FORMAT)
    return gz(head) + gz(bytes(1 << 20)) * megabytes + gz(END)
