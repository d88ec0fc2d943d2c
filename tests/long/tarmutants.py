"""Changes tar headers at random. tar must unpack every package that passes "verify" as reported.

Usage: tarmutants.py MKPACKAGE SEED COUNT, in the simulated panel, because tar runs as root.
"""
import json
import os
import pathlib
import random
import shutil
import stat
import subprocess
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "robustness" / "hostile"))
import archives  # noqa: E402
from archives import BLOCK, END, folder, gz, hardlink, header, member, pax, symlink  # noqa: E402

WORK = pathlib.Path("/run/tarmutants")
TARGET = WORK / "outside" / "target"

ARCHIVE = b"".join([
    folder("d"), member("d/a", b"a\n" * 300), symlink("d/l", "a"), hardlink("h", "d/a"),
    pax([(b"path", b"p")], member("q", b"p\n")),
    member("././@LongLink", b"n" * 120 + b"\0", b"L"), member("n" * 50, b"long\n"),
    pax([(b"size", b"600")], member("s", b"s" * 600)), symlink("d/u", "../d/a"), member("e", b""),
]) + END
HEADERS = [at for at in range(0, len(ARCHIVE), BLOCK) if ARCHIVE[at + 257:at + 262] == b"ustar"]

# Offset and size of: name, mode, user, group, size (twice, to be chosen more often), time, type
# (twice), link, magic, prefix, and three fields of GNU's sparse files.
FIELDS = [(0, 100), (100, 8), (108, 8), (116, 8), (124, 12), (124, 12), (136, 12), (156, 1),
          (156, 1), (157, 100), (257, 8), (345, 155), (386, 96), (482, 1), (483, 12)]
LIKELY = b"\0\x01\x7f\x80\xff ./0123456789ADKLMNSVXgx"


def change_header(block, source):
    offset, size = source.choice(FIELDS)
    first = offset + source.randrange(min(size, source.choice([1, 4, size])))
    for at in range(first, min(first + source.choice([1, 1, 2, 4]), offset + size)):
        block[at] = source.choice(LIKELY) if source.random() < 0.8 else source.randrange(256)
    return archives.patched(bytes(block), 0, b"")


def mutant(source):
    data = bytearray(ARCHIVE)
    for _ in range(source.choice([1, 1, 1, 2, 3])):
        at = source.choice(HEADERS)
        if source.random() < 0.1:  # the records of an extended header
            data[at + BLOCK + source.randrange(BLOCK)] = source.choice(b"0123456789 =\npath/sizelnkGNU.")
        else:
            data[at:at + BLOCK] = change_header(data[at:at + BLOCK], source)
    if source.random() < 0.05:  # removes or doubles a block
        at = BLOCK * source.randrange(len(data) // BLOCK)
        data[at:at + BLOCK] = data[at:at + BLOCK] * source.choice([0, 2])
    return bytes(data)


def made_files():
    for place, folders, files in os.walk(WORK / "outside"):
        yield from (pathlib.Path(place) / name for name in folders + files)


def harm(path):
    status = path.lstat()
    if TARGET not in path.parents:
        return [f"{path} is outside"]
    if stat.S_ISLNK(status.st_mode):
        leads = pathlib.Path(os.path.normpath(path.parent / os.readlink(path)))
        return [] if leads == TARGET or TARGET in leads.parents else [f"{path} leads to {leads}"]
    if not stat.S_ISREG(status.st_mode) and not stat.S_ISDIR(status.st_mode):
        return [f"{path} is special"]
    return [f"{path} has special bits"] if path.is_file() and status.st_mode & 0o6000 else []


def unpack(package):
    shutil.rmtree(WORK / "outside", ignore_errors=True)
    TARGET.mkdir(parents=True)
    (WORK / "archive").write_bytes(package[archives.HEADER_SIZE:])
    return subprocess.run(["tar", "-zxf", WORK / "archive"], cwd=TARGET, capture_output=True,
                          check=False)


def difference(package, told):
    tar = unpack(package)
    wrong = [f"tar fails: {tar.stderr[:200]}"] if tar.returncode != 0 else []
    made = [path for path in made_files() if path != TARGET]
    if len(made) != told["entries"]:
        wrong.append(f"{len(made)} files made, {told['entries']} reported")
    return wrong + [line for path in made for line in harm(path)]


def main():
    mkpackage, seed, count = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
    source = random.Random(seed)
    WORK.mkdir(exist_ok=True)
    good = different = 0
    for number in range(count):
        package = header() + gz(mutant(source), 1)
        (WORK / "package.kpc").write_bytes(package)
        verified = subprocess.run([mkpackage, "verify", WORK / "package.kpc", "--json"],
                                  capture_output=True, check=False)
        if verified.returncode not in (0, 1):
            sys.exit(f"package {number}: status {verified.returncode}: {verified.stderr}")
        if verified.returncode == 0:
            good += 1
            wrong = difference(package, json.loads(verified.stdout))
            different += bool(wrong)
            if wrong:
                print(f"package {number}: {'; '.join(wrong)}")
    print(f"seed {seed}: {count} packages, {good} good, {different} of them unpacked differently")
    sys.exit(different > 0)


if __name__ == "__main__":
    main()
