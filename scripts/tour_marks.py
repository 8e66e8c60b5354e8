"""The human of scripts/tour, who marks the screen: hotkey, pointer and keys by xdotool, like anybody's."""

import re
import subprocess
import time
from typing import NamedTuple

from tour_checks import Failed, check, until

HOTKEY = "super+ctrl+p"
OVERLAY = "Orvane overlay"
# The key that is M on a US keyboard, whatever it is on this one: the overlay goes by places.
MARKUP_KEY = "58"
# Where the palette has its arrow, in points from the middle of the screen's lower edge.
ARROW_BUTTON = (-169, -114)

# What the first two regions are outlined in, and what arrows are drawn in.
REGION_COLOURS = ((0x3B, 0x82, 0xF6), (0x8B, 0x5C, 0xF6))
ARROW_COLOUR = (0xEF, 0x44, 0x44)
# What is left of the screen's colours under the overlay.
DIMMED = 1 - 38 / 255


class Area(NamedTuple):
    """In pixels of the X screen, or of a picture of a part of it."""
    x: int
    y: int
    width: int
    height: int

    def at(self, across, down):
        """The point at these fractions of width and height."""
        return round(self.x + across * self.width), round(self.y + down * self.height)

    def part(self, left, top, right, bottom):
        """What lies between these fractions of width and height."""
        (x, y), (end_x, end_y) = self.at(left, top), self.at(right, bottom)
        return Area(x, y, end_x - x, end_y - y)

    def around(self, point, reach):
        return Area(point[0] - reach, point[1] - reach, 2 * reach, 2 * reach)

    def holds(self, other):
        return (self.x <= other.x and self.y <= other.y and other.x + other.width <= self.x + self.width and
                other.y + other.height <= self.y + self.height)

    def seen_from(self, other, scale=1.0):
        """In a picture that was made of the other one, and then scaled."""
        return Area(*(round(value * scale) for value in (self.x - other.x, self.y - other.y, self.width, self.height)))


def client_area(window_id):
    """What a window has inside its frame."""
    try:
        said = subprocess.run(["xwininfo", "-id", str(window_id)], stdin=subprocess.DEVNULL, capture_output=True,
                              text=True, timeout=10, check=True).stdout
    except (OSError, subprocess.SubprocessError) as error:
        raise Failed(f"xwininfo does not find window {window_id}: {error}") from error
    return Area(*(int(re.search(rf"{label}: *(-?\d+)", said)[1])
                  for label in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")))


def is_outlined(picture, area, colour, thickness):
    """Whether the sides of an area are lines of a colour, looked at where neither badge, label nor corner is."""
    right, middle = area.part(0.5, 0, 0.9, 1), area.part(0, 0.4, 1, 0.65)
    offsets = range(-thickness, thickness + 1)
    sides = [[Area(right.x, y + offset, right.width, 1) for offset in offsets]
             for y in (area.y, area.y + area.height)]
    sides.append([Area(area.x + area.width + offset, middle.y, 1, middle.height) for offset in offsets])
    return all(any(picture.share(colour, line) > 0.75 for line in side) for side in sides)


class Human:
    """`application` is the one whose overlay is used. leave() ends what has gone wrong."""

    def __init__(self, application):
        self.application = application
        self.said_before = len(application.said())
        position = self.xdotool("getmouselocation", "--shell")
        self.pointer_before = [re.search(rf"{axis}=(\d+)", position)[1] for axis in "XY"]

    def said(self):
        """What the application has written since."""
        return self.application.said()[self.said_before:]

    def xdotool(self, *words):
        try:
            return subprocess.run(["xdotool", *map(str, words)], stdin=subprocess.DEVNULL, capture_output=True,
                                  text=True, timeout=10, check=True).stdout
        except FileNotFoundError:
            raise Failed("xdotool, which moves the pointer, is not installed (scripts/bootstrap run)") from None
        except subprocess.SubprocessError as error:
            raise Failed(f"xdotool: {error}") from error

    def overlays(self):
        """The windows of the overlay that are on the screen, one a display."""
        try:
            found = self.xdotool("search", "--all", "--onlyvisible", "--pid", self.application.process.pid,
                                 "--name", f"^{OVERLAY}$")
        except Failed:
            # It says so, too, where there is none.
            return []
        return found.split()

    def press(self, key):
        self.xdotool("key", key)

    def open_overlay(self):
        self.press(HOTKEY)
        windows = until(self.overlays, "the overlay does not come up")
        self.screens = [client_area(window) for window in windows]

    def screen_of(self, areas):
        """The display on which all of these lie."""
        holding = [screen for screen in self.screens if all(screen.holds(area) for area in areas)]
        check(holding, "the sample windows do not lie on one display")
        return holding[0]

    def drag(self, start, end):
        middle = [(a + b) // 2 for a, b in zip(start, end)]
        self.xdotool("mousemove", *start, "mousedown", 1, "mousemove", *middle, "mousemove", *end, "mouseup", 1)

    def regions(self):
        """The regions drawn so far, in points: (x, y, width, height)."""
        return [tuple(map(float, numbers)) for numbers in
                re.findall(r"orvane: convert viewRect=.* quartz=\((.*), (.*), (.*), (.*)\)", self.said())]

    def mark(self, area, label):
        """Draws a region, gives it a label, and gives its place in points."""
        count = len(self.regions())
        self.drag(area.at(0, 0), area.at(1, 1))
        until(lambda: len(self.regions()) == count + 1, f"no region comes of dragging over {area}")
        self.xdotool("type", "--delay", 5, label)
        self.press("Return")
        return self.regions()[-1]

    def draw_arrow(self, screen, scale, start, end):
        """Takes the arrow from the palette of a screen with so many pixels a point."""
        self.press(MARKUP_KEY)
        x, y = screen.at(0.5, 1)
        self.xdotool("mousemove", round(x + ARROW_BUTTON[0] * scale), round(y + ARROW_BUTTON[1] * scale), "click", 1)
        self.drag(start, end)

    def submit(self):
        """Gives the session's id."""
        count = len(self.regions())
        self.press("Return")
        until(lambda: f"orvane: submitted {count} annotation(s). Clipboard updated.\n" in self.said(),
              f"nothing was submitted; {self.application.log} may say why", 30)
        saved = re.search(r"orvane: session (\S+) saved \(1 capture\(s\), (\d+) region\(s\)\)\n", self.said())
        check(saved and int(saved[2]) == count, "the session was not saved")
        return saved[1]

    def leave(self):
        """Gives pointer and keyboard back, whatever is going on."""
        # An editor takes the first Escape for itself. No more of them than needed: others would get them.
        for _ in range(3):
            if not self.overlays():
                break
            self.xdotool("mouseup", 1, "key", "Escape")
            deadline = time.monotonic() + 1
            while self.overlays() and time.monotonic() < deadline:
                time.sleep(0.05)
        self.xdotool("mousemove", *self.pointer_before)
