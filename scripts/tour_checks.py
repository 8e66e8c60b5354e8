"""What scripts/tour judges its steps by: pictures, movies and conditions."""

import math
import struct
import time
import zlib

# What a screen is divided into where changes are sought.
GRID_COLUMNS, GRID_ROWS = 8, 6


class Failed(Exception):
    """A step did not go as it should; the text says what was wrong."""


def check(condition, message):
    if not condition:
        raise Failed(message)


def until(condition, failure, seconds=15.0):
    """Waits until a condition gives something true, and gives that."""
    deadline = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        check(time.monotonic() < deadline, failure)
        time.sleep(0.05)


# ---- pictures

class Picture:
    """The pixels of a PNG with 8-bit RGB or RGBA (ISO/IEC 15948)."""

    def __init__(self, data):
        check(data[:8] == b"\x89PNG\r\n\x1a\n", "the image is no PNG")
        place, packed, header = 8, b"", None
        while place + 8 <= len(data):
            length, kind = struct.unpack(">I4s", data[place:place + 8])
            body = data[place + 8:place + 8 + length]
            if kind == b"IHDR":
                header = struct.unpack(">IIBBBBB", body)
            elif kind == b"IDAT":
                packed += body
            place += length + 12
        check(header is not None, "the PNG has no header")
        self.width, self.height = header[0], header[1]
        check(header[2] == 8 and header[3] in (2, 6) and header[6] == 0, "the PNG is neither RGB nor RGBA of 8 bits")
        self.channels = 3 if header[3] == 2 else 4
        self.rows = self.unfilter(zlib.decompress(packed))

    def unfilter(self, data):
        step, stride = self.channels, self.width * self.channels
        check(len(data) == (stride + 1) * self.height, "the PNG holds the wrong number of pixels")
        rows, above = [], bytearray(stride)
        for start in range(0, len(data), stride + 1):
            kind, row = data[start], bytearray(data[start + 1:start + 1 + stride])
            check(kind <= 4, "the PNG has an unknown filter")
            if kind == 2:
                row = bytearray((a + b) & 255 for a, b in zip(row, above))
            elif kind:
                for i in range(stride):
                    left = row[i - step] if i >= step else 0
                    corner = above[i - step] if i >= step else 0
                    if kind == 1:
                        guess = left
                    elif kind == 3:
                        guess = (left + above[i]) >> 1
                    else:
                        estimate = left + above[i] - corner
                        guess = min((left, above[i], corner), key=lambda value: abs(estimate - value))
                    row[i] = (row[i] + guess) & 255
            rows.append(row)
            above = row
        return rows

    def at(self, x, y):
        return tuple(self.rows[y][x * self.channels:x * self.channels + 3])

    def share(self, colour, area=None):
        """Which part of the pixels of (x, y, width, height) has a colour, give or take what shrinking does."""
        x, y, width, height = area or (0, 0, self.width, self.height)
        points = [(column, row) for row in range(y, y + height, 2) for column in range(x, x + width, 2)
                  if 0 <= row < self.height and 0 <= column < self.width]
        check(points, "the area lies outside the image")
        near = sum(1 for point in points if all(abs(a - b) <= 6 for a, b in zip(self.at(*point), colour)))
        return near / len(points)


def boxed_cells(picture):
    """How many cells of the grid have a red box: its left side, below the number and any title bar."""
    count = 0
    for row in range(GRID_ROWS):
        top, bottom = (int((row + part) * picture.height / GRID_ROWS) for part in (0.55, 0.9))
        for column in range(GRID_COLUMNS):
            left = math.ceil(column * picture.width / GRID_COLUMNS)
            red = 0
            for y in range(top, bottom):
                pixels = [picture.at(x, y) for x in range(left, left + 2)]
                red += any(r > 0.38 * 255 and r > b for r, _, b in pixels)
            count += red > 0.9 * (bottom - top)
    return count


# ---- movies

def boxes(data):
    """The boxes of an MP4 file (ISO/IEC 14496-12), or of what one of them holds: (type, content)."""
    place = 0
    while place < len(data):
        check(place + 8 <= len(data), "the movie is cut off")
        size, kind = struct.unpack(">I4s", data[place:place + 8])
        header = 8
        if size == 1:
            size, header = struct.unpack(">Q", data[place + 8:place + 16])[0], 16
        check(header <= size <= len(data) - place, f"a box of the movie has {size} bytes")
        yield kind.decode("latin-1"), data[place + header:place + size]
        place += size


def movie_seconds(path):
    """How long a movie plays, after checking that a player can begin before it has the whole file."""
    with open(path, "rb") as file:
        outer = list(boxes(file.read()))
    kinds = [kind for kind, _ in outer]
    check(kinds[0] == "ftyp", f"the movie begins with {kinds[0]}")
    check("moov" in kinds and "mdat" in kinds and kinds.index("moov") < kinds.index("mdat"),
          "the parts of the movie are " + ", ".join(kinds))
    header = dict(boxes(dict(outer)["moov"]))["mvhd"]
    scale, duration = struct.unpack(">IQ", header[20:32]) if header[0] == 1 else struct.unpack(">II", header[12:20])
    return duration / scale
