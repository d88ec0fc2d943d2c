"""Pictures of the panel's screen, and what they show.

The pictures of the picture book serve as samples. A page is recognised by its title: what is
bright there must be bright here, so shades do not matter.
"""

import functools
import pathlib
import struct
import zlib

SAMPLES = pathlib.Path(__file__).resolve().parents[2] / "docs/pictures/800x600"
BRIGHT = 128  # of 255; text is brighter, everything around it darker
MAX_DIFFERENCE = 0.05  # part of the pixels of an area that may be on the other side of that

# Areas: x, y, width, height in pixels.
TITLE = (330, 4, 140, 24)  # the text itself
HEADING = (29, 310, 200, 50)  # "Settings" on the main page
CANCEL = (20, 8, 60, 18)
RING = (340, 250, 25, 100)  # part of the countdown's ring, away from the number

# The colour of the ring for each count.
COUNT_COLORS = ((255, 0, 0), (255, 0, 255), (255, 255, 0), (0, 255, 0), (0, 0, 255), (255, 255, 255))


class Picture:
    """Pixels of three bytes, row by row."""

    def __init__(self, width, height, pixels):
        self.width, self.height, self.pixels = width, height, pixels

    @classmethod
    def from_ppm(cls, data):
        kind, width, height, _, pixels = data.split(maxsplit=4) if data[:2] == b"P6" else (0,) * 5
        if not kind:
            raise ValueError("not a PPM picture")
        size = int(width) * int(height) * 3
        return cls(int(width), int(height), data[len(data) - size:] if pixels else b"")

    @classmethod
    def from_png(cls, data):
        """Reads a picture with a palette, as the picture book has them."""
        position, palette, packed = 8, b"", b""
        while position < len(data):
            length, kind = struct.unpack_from(">I4s", data, position)
            body = data[position + 8:position + 8 + length]
            position += length + 12
            if kind == b"IHDR":
                width, height, depth, color, _, _, interlaced = struct.unpack(">IIBBBBB", body)
                if (depth, color, interlaced) != (8, 3, 0):
                    raise ValueError("not a plain PNG picture with a palette of 256 colours")
            elif kind == b"PLTE":
                palette = body
            elif kind == b"IDAT":
                packed += body
        colors = [palette[start:start + 3] for start in range(0, len(palette), 3)]
        pixels = b"".join(colors[index] for row in _png_rows(zlib.decompress(packed), width, height)
                          for index in row)
        return cls(width, height, pixels)

    def color(self, x, y):
        start = (y * self.width + x) * 3
        return tuple(self.pixels[start:start + 3])

    def row(self, area, y):
        """The bytes of row y of an area."""
        start = ((area[1] + y) * self.width + area[0]) * 3
        return self.pixels[start:start + 3 * area[2]]

    def holds(self, area, color):
        """Whether a pixel of the area has exactly this colour."""
        wanted = bytes(color)
        for y in range(area[3]):
            row = self.row(area, y)
            found = row.find(wanted)
            while found >= 0:
                if found % 3 == 0:
                    return True
                found = row.find(wanted, found + 1)
        return False

    def mean(self, area):
        """The mean brightness of an area, from 0 to 255."""
        return sum(sum(self.row(area, y)) for y in range(area[3])) / (3 * area[2] * area[3])

    def bright(self, area):
        """For each pixel of an area whether its green is bright."""
        return b"".join(self.row(area, y)[1::3].translate(_IS_BRIGHT) for y in range(area[3]))

    def difference(self, other, area):
        """Part of the pixels of an area that are bright in one picture only, from 0 to 1."""
        if (self.width, self.height) != (other.width, other.height):
            return 1.0
        mine, theirs = self.bright(area), other.bright(area)
        return sum(map(int.__ne__, mine, theirs)) / len(mine)

    def looks_like(self, name, area):
        """Whether an area looks as in the sample of that name."""
        return self.difference(sample(name), area) <= MAX_DIFFERENCE


_IS_BRIGHT = bytes(value >= BRIGHT for value in range(256))


def _png_rows(data, width, height):
    """Undoes the filters of a PNG picture with one byte per pixel."""
    above = bytes(width)
    for y in range(height):
        start = y * (width + 1)
        kind, row = data[start], bytearray(data[start + 1:start + 1 + width])
        for x in range(width if kind else 0):
            left = row[x - 1] if x else 0
            corner = above[x - 1] if x else 0
            row[x] = (row[x] + _prediction(kind, left, above[x], corner)) & 255
        above = row
        yield row


def _prediction(kind, left, up, corner):
    if kind < 4:
        return (0, left, up, (left + up) // 2)[kind]
    estimate = left + up - corner
    return min((left, up, corner), key=lambda value: abs(estimate - value))


@functools.lru_cache(maxsize=None)
def sample(name):
    return Picture.from_png((SAMPLES / f"{name}.png").read_bytes())


def shown_count(picture):
    """The count that the ring stands for; None if the countdown is not shown."""
    # The frame of the countdown is grey on black, and so is nothing that a start shows.
    if picture.width != 800 or picture.difference(sample("countdown"), (0, 0, 800, 200)) > 0.01:
        return None
    for count, color in enumerate(COUNT_COLORS):
        if picture.holds(RING, color):
            return count
    return None


def shows_main_page(picture):
    return picture.looks_like("main-page", HEADING) and picture.looks_like("main-page", TITLE)


def shows_page(picture, name):
    """Whether the page of this sample is shown, whatever it holds."""
    return picture.looks_like(name, TITLE) and picture.looks_like(name, CANCEL)
