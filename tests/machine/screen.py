"""Pictures of the panel's screen, and what they show.

Pages are recognised by their parts, not by their texts, because the font depends on the image.
"""

import functools
import pathlib
import struct
import zlib

SAMPLES = pathlib.Path(__file__).resolve().parents[2] / "docs/pictures/800x600"
BRIGHT = 128  # of 255; text is brighter, everything around it darker
MAX_DIFFERENCE = 0.01  # part of the pixels of an area that may be on the other side of that

# Areas: x, y, width, height in pixels.
HEADING = (29, 310, 200, 50)  # "Settings" on the main page
FIRST_PORT = (29, 65, 100, 40)  # "Lan 1" on the Ethernet page
CANCEL, OK = (20, 8, 60, 18), (735, 8, 30, 18)
RING = (340, 250, 25, 100)  # part of the countdown's ring, away from the number

WHITE, HEADING_COLOR = (255, 255, 255), (192, 104, 31)
KEYPAD_COLOR = (239, 239, 239)
CALIBRATOR_COLOR = (190, 190, 190)  # X's "gray"

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

    def is_bright(self, x, y):
        return self.color(x, y)[1] >= BRIGHT

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
    # The upper part of the countdown has no text: it is grey at the edge, black within.
    if not picture.looks_like("countdown", (0, 0, 800, 200)):
        return None
    return next((count for count, color in enumerate(COUNT_COLORS) if picture.holds(RING, color)), None)


def shows_main_page(picture):
    return (picture.width == 800 and picture.holds(HEADING, HEADING_COLOR)
            and not picture.holds(CANCEL, WHITE))


def is_blue(color):
    """Whether a colour is that of the bar of a chosen row."""
    return color[0] < 90 and color[2] > 170


def _shows_list(picture, x, y):
    return picture.is_bright(x, y) or is_blue(picture.color(x, y))


# What only this page has, by the name of its picture in the picture book.
_PARTS = {
    "ethernet": lambda picture: (
        picture.holds(FIRST_PORT, HEADING_COLOR) and picture.is_bright(750, 240)),
    "miscellaneous": lambda picture: all(
        picture.is_bright(560, y) == expected
        for y, expected in ((290, False), (335, True), (380, False), (425, True))),
    "system-status": lambda picture: picture.is_bright(775, 515) and not picture.is_bright(560, 335),
    "file-transfer": lambda picture: (
        _shows_list(picture, 740, 130) and not _shows_list(picture, 740, 92)),
    "install-fonts": lambda picture: _shows_list(picture, 740, 92) and _shows_list(picture, 740, 560),
    "calibration": lambda _: True,
}


def shows_page(picture, name):
    """Whether this settings page is shown, whatever it holds."""
    return (picture.width == 800 and picture.holds(CANCEL, WHITE) and picture.holds(OK, WHITE)
            and _PARTS[name](picture))


def dialog(picture):
    """The area of the dialog on the screen, by its frame in the colour of headings; None if there
    is none."""
    wanted = bytes(HEADING_COLOR) * 100  # longer than a stroke of any letter
    for y in range(picture.height):
        row = picture.row((0, 0, picture.width, picture.height), y)
        left = row.find(wanted)
        if left >= 0 and left % 3 == 0:
            left //= 3
            width = next((right for right in range(left, picture.width)
                          if picture.color(right, y) != HEADING_COLOR), picture.width) - left
            height = next((below for below in range(y, picture.height)
                           if picture.color(left, below) != HEADING_COLOR), picture.height) - y
            return left, y, width, height
    return None


def keypad_below(picture, field):
    """Left and top of the keypad below a field at that place; None if it is not shown."""
    y = field[1] + 27  # above its keys
    left = picture.row((0, 0, picture.width, picture.height), y).find(bytes(KEYPAD_COLOR) * 150)
    # a disabled field has the same colour, but is wider
    if left < 0 or picture.color(left // 3 + 200, y) == KEYPAD_COLOR:
        return None
    while picture.color(left // 3 + 80, y - 1) == KEYPAD_COLOR:
        y -= 1
    return left // 3, y


def shows_factory_window(picture):
    """Whether the first page of the factory window is shown: three fields on light grey."""
    return picture.width == 800 and all(
        picture.mean((590, y - 4, 8, 8)) > 241 and picture.color(590, y + 60) == (239, 239, 239)
        for y in (140, 300, 458))


def shows_calibrator(picture):
    """Whether the calibrator is shown, a grey screen with crosses and a clock."""
    return picture.width == 800 and picture.color(5, 5) == picture.color(794, 594) == CALIBRATOR_COLOR
