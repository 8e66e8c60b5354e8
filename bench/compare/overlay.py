"""The overlay as a human meets it: how soon it shows, how it keeps up with the pointer, and how soon the marks that
are handed over are on the clipboard."""

import contextlib
import json
import os
import time

from application import Application
from desktop import HEIGHT, WIDTH, Trouble, desktop, eventually
from human import Human

# How long nothing is asked of the program before something is measured.
REST_S = 0.3
ROUNDS = 3
STEPS = 200
STEP = (10, 6)
FROM = (300, 300)
# Of the region that is drawn, so far from where its other end is when the steps begin that its edges can be told apart.
CORNER = (240, 260)
# 20 regions within that region; what is looked at lies outside them.
CROWD = [((x, y), (x + 260, y + 150)) for y in range(400, 1400, 250) for x in range(400, 2200, 360)]
SUBMITTED = (((600, 500), (1400, 1000)), ((2000, 900), (2900, 1500)))

# What the overlay lays on the screen: colour, and how much of it.
DIMMING = ((0, 0, 0), 38 / 255)
DARKNESS = ((0, 0, 0), 0.55)
PILL = ((0, 0, 0), 0.75)
PLATE = ((31, 31, 31), 0.92)
CROSSHAIR = ((255, 255, 255), 0.2)
DRAGGED = ((255, 204, 0), 0.2)


class Session:
    """The application on a desktop whose colours are known, and the human before it."""

    def __init__(self, place, executable, scene):
        self.place = place
        folder = os.path.join(place.environment["XDG_CONFIG_HOME"], "orvane")
        os.makedirs(folder, exist_ok=True)
        with open(os.path.join(folder, "settings.json"), "w", encoding="ascii") as file:
            json.dump({"HasOnboarded": True}, file)
        self.application = Application(place, executable)
        with contextlib.ExitStack() as stack:
            server = self.application.pipe(stack)
            server.initialize()
            if scene == "work":
                place.hang_wallpaper(scene)
                place.fill_with_work(server)
            else:
                place.run(["hsetroot", "-solid", scene])
            place.settle(server)
        self.human = Human(place)
        self.is_dark = False
        self.ground = self.human.pixels(0, 0, WIDTH, HEIGHT)

    def colour(self, x, y, *layers):
        """Red, green and blue of the ground with these on it."""
        at = 4 * (y * WIDTH + x)
        colour = self.ground[at + 2], self.ground[at + 1], self.ground[at]
        for ink, share in layers:
            colour = tuple(share * top + (1 - share) * below for top, below in zip(ink, colour))
        return colour

    def expected(self, places):
        """{(x, y): what lies on the dimmed ground} as colours."""
        dimmed = (DIMMING, DARKNESS) if self.is_dark else (DIMMING,)
        return {(x, y): self.colour(x, y, *dimmed, *layers) for (x, y), layers in places.items()}

    def frame(self):
        """Places all over the screen, with the bar's upper and the pill's lower edge among them."""
        right, bottom, middle = WIDTH - 1, HEIGHT - 1, HEIGHT // 2
        bare = ((0, 0), (right, 0), (0, bottom), (right, bottom), (0, middle), (right, middle), (600, bottom),
                (WIDTH // 2, middle))
        return {**{place: () for place in bare}, (WIDTH // 2, 60): (PILL,), (WIDTH // 2, HEIGHT - 73): (PLATE,)}

    def open(self):
        """Milliseconds from the moment at which the hotkey is let go of to the whole overlay."""
        human = self.human
        self.is_gone()
        time.sleep(REST_S)
        for name in ("Super_L", "Control_L", "p"):
            human.key(name, True)
        time.sleep(0.05)
        before = human.key("p", False)
        human.key("Control_L", False)
        human.key("Super_L", False)
        elapsed = 1000 * (human.shows(self.expected(self.frame())) - before)
        # The keyboard comes to the overlay after its picture.
        time.sleep(REST_S)
        return elapsed

    def is_gone(self):
        self.human.shows({(x, y): self.colour(x, y) for x, y in self.frame()})

    def cancel(self):
        self.human.press("Escape")
        self.is_gone()

    def follow(self, places_at):
        """Milliseconds that each step of the pointer takes until it shows, the next one being made at once.
        `places_at` says what shows when the pointer is at (x, y)."""
        samples = []
        for step in range(1, STEPS + 1):
            x, y = FROM[0] + step * STEP[0], FROM[1] + step * STEP[1]
            expected = self.expected(places_at(x, y))
            before = self.human.point(x, y)
            samples.append(1000 * (self.human.shows(expected) - before))
        return samples

    def move(self):
        """As follow() does, without a button."""
        self.point_at_start(crosshair)
        return self.follow(crosshair)

    def drag(self):
        """As follow() does, while a region is drawn. It stays."""
        self.human.point(*CORNER)
        self.human.button(True)
        self.point_at_start(dragged)
        samples = self.follow(dragged)
        self.human.button(False)
        self.close_editor(CORNER, (FROM[0] + STEPS * STEP[0], FROM[1] + STEPS * STEP[1]))
        return samples

    def point_at_start(self, places_at):
        self.human.point(*FROM)
        self.human.shows(self.expected(places_at(*FROM)))

    def close_editor(self, corner, opposite):
        """Waits for the editor of a region that was drawn between these, and sends it away."""
        # In its arrow.
        place = ((corner[0] + opposite[0]) // 2, corner[1] - 4)
        self.human.shows(self.expected({place: (PLATE,)}))
        self.human.press("Return")
        self.human.shows(self.expected({place: ()}))

    def mark(self, corner, opposite):
        self.human.point(*corner)
        self.human.button(True)
        self.human.point((corner[0] + opposite[0]) // 2, (corner[1] + opposite[1]) // 2)
        self.human.point(*opposite)
        self.human.button(False)
        self.close_editor(corner, opposite)

    def toggle_spotlight(self):
        self.human.press("b")
        self.is_dark = not self.is_dark
        self.human.shows(self.expected({(0, 0): ()}))

    def submit(self):
        """Milliseconds from the key that hands over two regions to the clipboard."""
        for region in SUBMITTED:
            self.mark(*region)
        sessions = os.path.join(self.place.folder, ".orvane/sessions/latest")
        last = os.path.realpath(sessions)
        time.sleep(REST_S)
        self.human.forget_clipboard()
        before = self.human.press("Return")
        elapsed = 1000 * (self.human.clipboard_is_set() - before)
        eventually(lambda: os.path.realpath(sessions) != last and
                   os.path.exists(os.path.join(sessions, "thumbnail.png")), "there is no session")
        if not os.path.exists(os.path.join(sessions, "region-2.png")):
            raise Trouble("a region was not handed over")
        return elapsed


def crosshair(x, y):
    # The ends, in the first dash of each line.
    return {(x, 1): (CROSSHAIR,), (1, y): (CROSSHAIR,)}


def dragged(x, y):
    # Beside the ends of the two edges that have moved, and the crosshair's ends.
    return {**crosshair(x, y), (x - 4, CORNER[1] + 20): (DRAGGED,), (CORNER[0] + 20, y - 3): (DRAGGED,)}


class Figures:
    """Milliseconds, all of them, on one desktop."""

    def __init__(self, executable, runs, scene, has_compositor):
        with desktop(options=() if has_compositor else ("--no-compositor",)) as place:
            session = Session(place, executable, scene)
            self.openings = self.opened(session, runs)
            # Windows look different, and are no known ground, while the overlay has the keyboard.
            self.steps = self.followed(session) if scene == "white" else {}
            self.submissions = self.submitted(session, runs) if scene == "work" else {}

    @staticmethod
    def opened(session, runs):
        samples = []
        for _ in range(runs + 1):
            samples.append(session.open())
            session.cancel()
        # The first one warms up.
        return samples[1:]

    @staticmethod
    def followed(session):
        """{what the pointer does: milliseconds of each step}"""
        samples = {"moved": [], "dragged": [], "moved over 20 regions": [], "dragged over 20 regions": []}
        for _ in range(ROUNDS):
            session.open()
            samples["moved"] += session.move()
            samples["dragged"] += session.drag()
            session.cancel()
            session.open()
            for region in CROWD:
                session.mark(*region)
            samples["moved over 20 regions"] += session.move()
            samples["dragged over 20 regions"] += session.drag()
            session.cancel()
        return samples

    @staticmethod
    def submitted(session, runs):
        """{mode: milliseconds of each}"""
        samples = {"plain": [], "spotlight": []}
        for mode, series in samples.items():
            if mode == "spotlight":
                session.open()
                session.toggle_spotlight()
                session.cancel()
            for _ in range(runs):
                session.open()
                series.append(session.submit())
        return samples
