"""A human at a desktop, as far as the X server can tell: eyes for its pixels, hands for its pointer and keys. Without
processes of other programs, so that what is timed is what is looked at."""

import ctypes
import os
import select
import time

from desktop import Trouble

DEADLINE_S = 10.0
POLL_S = 0.0003
# Colours are rounded once for each layer.
TOLERANCE = 3

LEFT_BUTTON, ALL_COLOURS, Z_PIXMAP, SET_OWNER = 1, 0xFFFFFF, 2, 1


class Image(ctypes.Structure):
    _fields_ = [("width", ctypes.c_int), ("height", ctypes.c_int), ("xoffset", ctypes.c_int), ("format", ctypes.c_int),
                ("data", ctypes.POINTER(ctypes.c_char)), ("byte_order", ctypes.c_int), ("bitmap_unit", ctypes.c_int),
                ("bitmap_bit_order", ctypes.c_int), ("bitmap_pad", ctypes.c_int), ("depth", ctypes.c_int),
                ("bytes_per_line", ctypes.c_int), ("bits_per_pixel", ctypes.c_int)]


def library(name, **signatures):
    """A C library; each signature is the type of the result and those of the parameters."""
    loaded = ctypes.CDLL(name)
    for function, (result, *parameters) in signatures.items():
        getattr(loaded, function).restype = result
        getattr(loaded, function).argtypes = parameters
    return loaded


POINTER, ID, INT, UNSIGNED = ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_uint
X11 = library("libX11.so.6", XOpenDisplay=(POINTER, ctypes.c_char_p), XCloseDisplay=(INT, POINTER),
              XDefaultRootWindow=(ID, POINTER), XConnectionNumber=(INT, POINTER), XFlush=(INT, POINTER),
              XPending=(INT, POINTER), XNextEvent=(INT, POINTER, POINTER), XDestroyImage=(INT, POINTER),
              XGetImage=(POINTER, POINTER, ID, INT, INT, UNSIGNED, UNSIGNED, ID, INT),
              XInternAtom=(ID, POINTER, ctypes.c_char_p, INT), XStringToKeysym=(ID, ctypes.c_char_p),
              XKeysymToKeycode=(ctypes.c_ubyte, POINTER, ID))
XTST = library("libXtst.so.6", XTestFakeKeyEvent=(INT, POINTER, UNSIGNED, INT, ID),
               XTestFakeButtonEvent=(INT, POINTER, UNSIGNED, INT, ID),
               XTestFakeMotionEvent=(INT, POINTER, INT, INT, INT, ID))
XFIXES = library("libXfixes.so.3", XFixesQueryExtension=(INT, POINTER, POINTER, POINTER),
                 XFixesSelectSelectionInput=(None, POINTER, ID, ID, ID))


class Human:
    """At the display of one desktop, until that ends. Times are those of time.perf_counter()."""

    def __init__(self, place):
        # Xlib asks the environment of the process.
        os.environ["XAUTHORITY"] = place.environment["XAUTHORITY"]
        self.display = X11.XOpenDisplay(place.environment["DISPLAY"].encode())
        if not self.display:
            raise Trouble("the display cannot be opened")
        place.stack.callback(X11.XCloseDisplay, self.display)
        self.root = X11.XDefaultRootWindow(self.display)
        event, error = INT(), INT()
        if not XFIXES.XFixesQueryExtension(self.display, ctypes.byref(event), ctypes.byref(error)):
            raise Trouble("the X server has no XFixes")
        self.selection_event = event.value
        clipboard = X11.XInternAtom(self.display, b"CLIPBOARD", False)
        XFIXES.XFixesSelectSelectionInput(self.display, self.root, clipboard, SET_OWNER)

    def pixels(self, x, y, width=1, height=1):
        """Blue, green, red and a spare byte of each."""
        pointer = X11.XGetImage(self.display, self.root, x, y, width, height, ALL_COLOURS, Z_PIXMAP)
        image = ctypes.cast(pointer, ctypes.POINTER(Image)).contents
        if image.bits_per_pixel != 32 or image.byte_order != 0:
            raise Trouble("not a screen of 32 bits a pixel")
        text = ctypes.string_at(image.data, 4 * width * height)
        X11.XDestroyImage(pointer)
        return text

    def shows(self, expected):
        """Looks until each place, {(x, y): (red, green, blue)}, has its colour. The moment at which it has."""
        deadline = time.perf_counter() + DEADLINE_S
        awaited = list(expected.items())
        while awaited:
            (x, y), colour = awaited[-1]
            blue, green, red, _ = self.pixels(x, y)
            if all(abs(seen - meant) <= TOLERANCE for seen, meant in zip((red, green, blue), colour)):
                awaited.pop()
            elif time.perf_counter() > deadline:
                raise Trouble(f"at {x}, {y} there is {(red, green, blue)}, not {tuple(map(round, colour))}")
            else:
                time.sleep(POLL_S)
        return time.perf_counter()

    def key(self, name, down):
        """The moment before it goes down or up."""
        code = X11.XKeysymToKeycode(self.display, X11.XStringToKeysym(name.encode()))
        before = time.perf_counter()
        XTST.XTestFakeKeyEvent(self.display, code, down, 0)
        X11.XFlush(self.display)
        return before

    def press(self, name):
        """The moment before it goes down."""
        before = self.key(name, True)
        self.key(name, False)
        return before

    def point(self, x, y):
        """The moment before the pointer moves there."""
        before = time.perf_counter()
        XTST.XTestFakeMotionEvent(self.display, 0, x, y, 0)
        X11.XFlush(self.display)
        return before

    def button(self, down):
        XTST.XTestFakeButtonEvent(self.display, LEFT_BUTTON, down, 0)
        X11.XFlush(self.display)

    def forget_clipboard(self):
        """Only what becomes of the clipboard from now on counts."""
        event = ctypes.create_string_buffer(256)
        while X11.XPending(self.display):
            X11.XNextEvent(self.display, event)

    def clipboard_is_set(self):
        """Waits until somebody takes the clipboard, and gives that moment."""
        event = ctypes.create_string_buffer(256)
        deadline = time.perf_counter() + DEADLINE_S
        while time.perf_counter() < deadline:
            select.select([X11.XConnectionNumber(self.display)], [], [], DEADLINE_S)
            while X11.XPending(self.display):
                X11.XNextEvent(self.display, event)
                if INT.from_buffer(event).value == self.selection_event:
                    return time.perf_counter()
        raise Trouble("the clipboard is not set")
