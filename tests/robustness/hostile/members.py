"""Hostile packages with a correct header and a hostile tar archive."""
import tarfile

import archives
from archives import (FIRMWARE, OEM, archive, device, folder, hardlink, header, member, patched,
                      pax, symlink)
from packages import Case, FIRMWARE_RAISED, STRIPPED, application

EVIL = b"evil\n"


def added(name, *members, adds="", **fields):
    return application("tar", name, archive(*members), adds, **fields)


def in_turn(name, archives_, changes, **fields):
    return Case("planted", name, [header() + payload for payload in archives_],
                [0] * len(archives_), changes, **fields)


def tar_headers():
    evil = member("evil", EVIL)
    came = "+/home/dest/evil"
    yield added("wrong-checksum", patched(evil, 0, b"EVIL", checked=False))
    yield added("8-gigabytes-claimed", patched(evil, 124, b"77777777777\0"), adds=came)
    yield added("negative-size", patched(evil, 124, b"\xff" * 12))
    yield added("size-of-all-bits", patched(evil, 124, archives.base256((1 << 63) - 1, 12)),
                adds=came)
    yield added("endless-long-name", patched(member("././@LongLink", b"x" * 100, b"L"), 124,
                                             archives.base256(1 << 40, 12)), evil)
    yield added("pax-of-garbage", member("pax", b"999 path=no line feed", tarfile.XHDTYPE), evil,
                adds=came)
    yield added("pax-size", pax([(b"size", b"999999999999")], evil), adds=came)
    yield added("pax-in-another-charset", pax([(b"hdrcharset", b"BINARY")], evil), adds=came)
    yield added("unknown-type", patched(evil, 156, b"Z"), adds=came)
    yield added("goes-on-from-another-disk", patched(evil, 156, b"M"))
    yield added("label", patched(evil, 156, b"V"))
    yield added("folder-with-contents", patched(member("folder", b"x" * 512), 156, b"5"),
                adds="+/home/dest/folder/")
    yield added("far-future", pax([(b"mtime", b"9223372036854775807")], evil), adds=came)
    yield added("before-all-time", pax([(b"mtime", b"-9223372036854775808")], evil), adds=came)
    yield added("owner-out-of-range", patched(evil, 108, b"\xff" * 8), adds=came)
    terabyte = patched(member("sparse", b"x" * 512), 156, b"S")
    sparse_map = archives.base256((1 << 40) - 512, 12) + b"00000001000\0"
    terabyte = patched(patched(terabyte, 386, sparse_map), 483, archives.base256(1 << 40, 12))
    yield added("sparse-terabyte", terabyte, adds="+/home/dest/sparse")
    yield added("same-member-1000-times", evil * 1000, adds=came)
    yield added("100000-members", archives.many_members(100000), adds="+/home/dest/many/(100000)")


def leaving_names():
    for name in ("../evil", "../../outside/evil", "a/../../evil", ".."):
        yield added("name-" + name.replace("/", "-"), member(name, EVIL))
    yield added("absolute", member("/outside/evil", EVIL), adds="+/home/dest/outside/(1)")
    yield added("pax-name", pax([(b"path", b"../../outside/evil")], member("x", EVIL)))
    yield added("pax-absolute", pax([(b"path", b"/outside/evil")], member("x", EVIL)),
                adds="+/home/dest/outside/(1)")
    yield added("pax-sparse-name", pax([(b"GNU.sparse.major", b"0"), (b"GNU.sparse.minor", b"1"),
                                        (b"GNU.sparse.name", b"../../outside/evil"),
                                        (b"GNU.sparse.numblocks", b"1"),
                                        (b"GNU.sparse.map", b"0,5")], member("x", EVIL)))
    long_name = b"../" * 60 + b"outside/evil"
    yield added("long-name", member("././@LongLink", long_name + b"\0", b"L"), member("x", EVIL))


def links():
    """Links within one package. tar creates links that lead out only after everything else."""
    out = "+/home/dest/out@"
    for name, target in {"absolute": "/outside", "relative": "../../outside"}.items():
        yield added(f"through-{name}-link", symlink("out", target), member("out/evil", EVIL),
                    adds=out)
        yield added(f"hard-link-through-{name}-link", symlink("out", target),
                    hardlink("evil", "out/guard"), adds=out)
    yield added("through-link-in-a-folder", folder("a"), symlink("a/out", "../../../outside"),
                member("a/out/evil", EVIL), adds="+/home/dest/a/(1)")
    yield added("written-through-file-link", symlink("f", "/outside/guard"), member("f", EVIL),
                adds="+/home/dest/f")
    yield added("hard-link-absolute", hardlink("evil", "/outside/guard"))
    yield added("hard-link-relative", hardlink("evil", "../../outside/guard"))
    yield added("hard-link-to-itself", hardlink("evil", "evil"))
    yield added("link-to-itself", symlink("l", "l"), member("l/x", EVIL), adds="+/home/dest/l@")
    yield added("link-to-nothing", symlink("l", ""))
    yield added("links-in-a-ring", symlink("a", "b"), symlink("b", "a"), member("a/x", EVIL),
                adds="+/home/dest/a@ +/home/dest/b@")
    yield added("100-links-in-a-chain", symlink("l0", "."),
                *[symlink(f"c/l{n}", f"l{n - 1}") for n in range(1, 100)],
                adds="+/home/dest/c/(99) +/home/dest/l0@")


def planted_links():
    """One package plants a link, the next one goes through it."""
    plant = archive(symlink("out", "/outside"))
    planted = "+/home/dest/out@"

    def then(name, *members, changes, hazard="a link that an earlier package left is followed"):
        return in_turn(name, [plant, archive(*members)], changes, hazard=hazard)

    yield then("file", member("out/evil", EVIL),
               changes=f"{STRIPPED} {planted} +/outside/evil")
    yield then("over-the-guard", member("out/guard", EVIL),
               changes=f"{STRIPPED} {planted} ~/outside/guard")
    yield then("hard-link", hardlink("evil", "out/guard"),
               changes=f"{STRIPPED} +/home/dest/evil {planted} ~/outside/guard")
    yield then("set-user-id", member("out/evil", EVIL, mode=0o4755),
               changes=f"{STRIPPED} {planted} +/outside/evil[4755]")
    yield then("mode-of-a-folder", folder("out/folder", 0o777),
               changes=f"{STRIPPED} {planted} ~/outside/folder/")
    # If the application folder is missing, a firmware may put a link there. The next application
    # then removes and unpacks files through the link.
    firmware = header(FIRMWARE, archives.RUNTIME_VERSION, OEM) + archive(symlink("dest", "/outside"))
    yield Case("planted", "target-itself", [firmware, header() + archive(member("evil", EVIL))],
               [0, 0], f"{FIRMWARE_RAISED} +/home/dest@ -/outside/compile/(1) +/outside/evil",
               setup="no-target", hazard="a link in place of the folder is followed")
    # A folder or a file replaces the link.
    yield then("folder-first", folder("out"), member("out/evil", EVIL),
               changes=f"{STRIPPED} +/home/dest/out/(1)", hazard="-")
    yield then("file-instead", member("out", EVIL), changes=f"{STRIPPED} +/home/dest/out",
               hazard="-")
    yield in_turn("file-link", [archive(symlink("f", "/outside/guard")),
                                archive(member("f", EVIL))], f"{STRIPPED} +/home/dest/f")
    # "rm -rf" removes the link, not its target.
    yield in_turn("application-folder", [archive(symlink("compile", "/outside")),
                                         archive(member("compile/new", EVIL))],
                  "+/home/dest/compile/new -/home/dest/compile/old")
    yield in_turn("pipe", [archive(device("pipe", tarfile.FIFOTYPE, 0, 0)),
                           archive(member("pipe", EVIL))], f"{STRIPPED} +/home/dest/pipe")


def rights():
    """Modes, owners and devices, which tar restores when root runs it."""
    for mode in (0o4755, 0o2755, 0o6755):
        yield added(f"mode-{mode:o}", member("evil", EVIL, mode=mode),
                    adds=f"+/home/dest/evil[{mode:o}]", hazard="special bits are unpacked")
    yield added("sticky-folder", folder("evil", 0o1777), adds="+/home/dest/evil/[1777]")
    yield added("no-rights", member("evil", EVIL, mode=0), adds="+/home/dest/evil")
    yield added("folder-without-rights", folder("f", 0), member("f/x", EVIL),
                adds="+/home/dest/f/(1)")
    yield Case("tar", "rights-of-the-target", [header() + archive(folder("./", 0))], [0],
               "~/home/dest/ " + STRIPPED, hazard="the folder takes the archive's rights")
    yield added("foreign-owner", member("evil", EVIL, uid=12345, gid=54321),
                adds="+/home/dest/evil", hazard="owners are unpacked")
    yield added("pipe", device("pipe", tarfile.FIFOTYPE, 0, 0), adds="+/home/dest/pipe|")
    # The only device that the simulated panel may create. A real panel creates the others, too.
    yield added("device-0-0", device("evil", tarfile.CHRTYPE, 0, 0), adds="+/home/dest/evil%",
                setup="small-target", hazard="devices are unpacked")
    yield added("memory-device", device("evil", tarfile.CHRTYPE, 1, 1))
    yield added("disk-device", device("evil", tarfile.BLKTYPE, 7, 200))


def named(name, *members, adds=""):
    return application("name", name, archive(*members), adds)


def names():
    good = {
        "255-bytes": "n" * 255, "line-feed": "a\nb", "no-utf-8": "a\udcff\udcc3", "escape": "a\x1b[2J",
        "option": "--checkpoint-action=exec=x", "backslash": "a\\nb", "quotes": "a'\"$(x)`x`;x",
        "carriage-return": "a\rb", "right-to-left": "a\u202eb", "every-byte": "\x01\x7f\udc80",
        "blank": " ", "format": "%s%n",
    }
    for name, text in good.items():
        shown = "".join(chr(byte) if 0x20 < byte < 0x7F and byte != 0x5C else f"\\x{byte:02x}"
                        for byte in text.encode("utf-8", "surrogateescape"))
        yield named(name, member(text, EVIL), adds=f"+/home/dest/{shown}")
    yield named("256-bytes", member("n" * 256, EVIL))
    yield named("empty", member("", EVIL))
    yield named("dot", member(".", EVIL))
    yield named("too-long-path", member("d/" * 3000 + "x", EVIL))
    yield named("1000-deep", member("d/" * 1000 + "x", EVIL), adds="+/home/dest/d/(1000)")
    inner = folder("x") + member("x/y", EVIL)
    yield named("file-then-folder", member("x", EVIL), inner, adds="+/home/dest/x/(1)")
    yield named("folder-then-file", inner, member("x", EVIL), adds="+/home/dest/x/(1)")
    yield Case("name", "file-named-compile", [header() + archive(member("compile", EVIL))], [0],
               "~/home/dest/compile -/home/dest/compile/old")
