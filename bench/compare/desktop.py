"""The desktops that are measured on, and the processes of the program that serve on them."""

import contextlib
import json
import os
import shutil
import subprocess
import time

PROJECT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.realpath(__file__))))
WIDTH, HEIGHT = 3840, 2160
READY_DEADLINE_S = 60.0
INITIALIZE = {"protocolVersion": "2024-11-05", "capabilities": {}, "clientInfo": {"name": "bench", "version": "1.0.0"}}

# Sources to show in terminals, and where the terminals stand: columns, rows, x, y, ground, ink.
TERMINALS = (
    ("OrvaneCore/tools/ToolHandler.cpp", 110, 44, 60, 60, "#ffffff", "#1a1a1a"),
    ("OrvaneCore/storage/StorageManager.cpp", 100, 40, 900, 180, "#1e1e24", "#d2d6dc"),
    ("OrvanePlatform/x11/PixelReader.cpp", 110, 50, 1750, 60, "#102a43", "#d9e2ec"),
    ("OrvaneCore/mcp/catalogue/tools.json", 90, 40, 2750, 240, "#ffffff", "#1a1a1a"),
    ("scripts/with-desktop", 110, 44, 120, 1150, "#1e1e24", "#a0e6aa"),
    ("tests/support/test-window.cpp", 120, 40, 1250, 1250, "#fdf6e3", "#586e75"),
)
OTHERS = (("xclock", "420x420+3300+60"), ("xlogo", "300x300+2950+1300"), ("xcalc", "+2500+1350"),
          ("xeyes", "400x260+3350+1750"))
WALLPAPERS = {
    # Smooth colours without noise, as the picture that a desktop comes with.
    "work": ["-size", f"{WIDTH}x{HEIGHT}", "-define", "gradient:angle=35", "gradient:#16304a-#7fa7c0",
             "-fill", "#ffffff22", "-draw", "circle 2900,500 2900,1400", "-draw", "circle 700,1700 700,2500"],
    # What a photograph is to an encoder: soft forms under noise, so that hardly a byte repeats.
    "photo": ["-size", f"{WIDTH}x{HEIGHT}", "-seed", "7", "plasma:#3b6ea5-#c2b280",
              "-attenuate", "0.25", "+noise", "Gaussian"],
}


class Trouble(Exception):
    """Something cannot be measured; the text says why."""


def eventually(condition, what):
    deadline = time.monotonic() + READY_DEADLINE_S
    while not condition():
        if time.monotonic() > deadline:
            raise Trouble(what)
        time.sleep(0.2)


def end(process):
    """Ends a process of ours."""
    process.terminate()
    try:
        process.wait(5)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


class Desktop:
    """A private virtual desktop with windows of its own."""

    def __init__(self, stack, width, height, options):
        holder = subprocess.Popen(
            [os.path.join(PROJECT, "scripts/with-desktop"), "--size", f"{width}x{height}", *options, "--",
             "sh", "-c", "env -0; exec 1>&-; cat >/dev/null"],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        # Closing its input ends the desktop.
        stack.callback(holder.wait)
        stack.callback(holder.stdin.close)
        text = holder.stdout.read().decode()
        if "DISPLAY=" not in text:
            raise Trouble("the virtual desktop did not start")
        self.environment = dict(entry.split("=", 1) for entry in text.split("\0") if entry)
        # What is measured is this program, and the application only where it is asked for.
        self.environment["ORVANE_START_APPLICATION"] = "0"
        self.folder = self.environment["HOME"]
        self.stack = stack
        self.has_tray = False

    def open(self, command):
        process = subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.stack.callback(end, process)

    def run(self, command):
        subprocess.run(command, env=self.environment, check=True, stdin=subprocess.DEVNULL, capture_output=True)

    def hang_wallpaper(self, name):
        path = os.path.join(self.folder, f"{name}.png")
        self.run(["convert", *WALLPAPERS[name], "-depth", "8", path])
        self.run(["hsetroot", "-cover", path])

    def fill_with_work(self, server):
        for path, columns, rows, x, y, ground, ink in TERMINALS:
            words = "if|for|return|const|auto|while|std|def|class|struct|\"[^\"]*\""
            self.open(["xterm", "-title", path, "-geometry", f"{columns}x{rows}+{x}+{y}", "-bg", ground, "-fg", ink,
                       "-fa", "DejaVu Sans Mono", "-fs", "9", "-e", "sh", "-c",
                       'grep --color=always -E "$0|" "$1" | tail -n 120; exec sleep 86400', words,
                       os.path.join(PROJECT, path)])
        for program, geometry in OTHERS:
            self.open([program, "-geometry", geometry])
        count = len(TERMINALS) + len(OTHERS)
        eventually(lambda: len(server.windows()) == count, "the windows do not open")

    def fill_with_windows(self, server, count):
        for number in range(count):
            column, row = number % 20, number // 20
            self.open([("xlogo", "xeyes", "xclock")[number % 3], "-title", f"Window {number + 1} of {count}",
                       "-geometry", f"150x150+{20 + 185 * column}+{40 + 400 * row}"])
        eventually(lambda: len(server.windows()) == count, f"{count} windows do not open")

    def open_text_window(self):
        """A terminal of about 1600x1000 pixels full of source text."""
        self.open(["xterm", "-geometry", "227x64+100+100", "-bg", "#ffffff", "-fg", "#1a1a1a", "-fa", "DejaVu Sans Mono",
                   "-fs", "9", "-e", "sh", "-c", 'tail -n 120 "$0"; exec sleep 86400',
                   os.path.join(PROJECT, "OrvanePlatform/x11/PixelReader.cpp")])

    def settle(self, server):
        """Waits until nothing on the screen changes any more."""
        seen = []

        def still():
            seen.append(server.capture()[1])
            return seen[-3:] == [seen[-1]] * 3

        eventually(still, "the screen does not come to rest")


def processor_seconds(pid):
    """What a process has used until now, threads that are gone among it, to the nanosecond."""
    # The clock's number as the kernel makes it of a process (clock_getcpuclockid(3)).
    return time.clock_gettime((~pid << 3) | 2)


class Usage:
    """Processor time of a process of ours and of the X server from now on."""

    def __init__(self, place, process):
        self.pids = process.pid, int(place.environment["ORVANE_DESKTOP_XSERVER_PID"])
        self.began = self.now()

    def now(self):
        return [processor_seconds(pid) for pid in self.pids]

    def milliseconds(self, count):
        """{figure: milliseconds of each of so many}"""
        used = [1000 * (now - began) / count for now, began in zip(self.now(), self.began)]
        return {"processor time, orvane, ms": used[0], "processor time, X server, ms": used[1]}


class Server:
    """The program as an agent has it, warm or fresh."""

    def __init__(self, stack, command, environment, folder=None):
        self.began = time.perf_counter()
        self.process = subprocess.Popen(command, env=environment, cwd=folder, bufsize=0, stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        stack.callback(self.close)

    def close(self):
        if self.process.returncode is None:
            self.process.stdin.close()
            try:
                self.process.wait(5)
            except subprocess.TimeoutExpired:
                end(self.process)
            self.process.stdout.close()

    def request(self, method, params=None):
        """(moment before the request, moment after the whole reply line, result)"""
        line = json.dumps({"jsonrpc": "2.0", "id": 1, "method": method, "params": params or {}}).encode() + b"\n"
        descriptor, blocks = self.process.stdout.fileno(), []
        before = time.perf_counter()
        self.process.stdin.write(line)
        while True:
            block = os.read(descriptor, 1 << 20)
            blocks.append(block)
            if not block or block.endswith(b"\n"):
                break
        after = time.perf_counter()
        if not blocks[-1]:
            raise Trouble(f"no answer to {method}")
        reply = json.loads(b"".join(blocks))
        if "result" not in reply:
            raise Trouble(f"{method}: {reply}")
        return before, after, reply["result"]

    def initialize(self):
        """Seconds from the start of the process to the reply."""
        _, after, _ = self.request("initialize", INITIALIZE)
        return after - self.began

    def call(self, tool, **arguments):
        """(seconds, content of the result)"""
        before, after, result = self.request("tools/call", {"name": tool, "arguments": arguments})
        if result.get("isError"):
            raise Trouble(f"{tool}: {result['content'][0]['text']}")
        return after - before, result["content"]

    def windows(self):
        return json.loads(self.call("list_windows")[1][0]["text"])

    def capture(self):
        """The whole screen: (seconds, picture in base64)."""
        seconds, content = self.call("capture_region", x=0, y=0, width=WIDTH, height=HEIGHT)
        return seconds, content[1]["data"]

    def processor_seconds(self):
        """What the process has used until now, by itself and by the kernel for it."""
        with open(f"/proc/{self.process.pid}/stat", encoding="ascii") as file:
            fields = file.read().rpartition(")")[2].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def memory(self):
        """Fields of /proc/PID/status in KiB."""
        with open(f"/proc/{self.process.pid}/status", encoding="ascii") as file:
            fields = (line.split() for line in file)
            return {parts[0].rstrip(":"): int(parts[1]) for parts in fields if parts[-1] == "kB"}


@contextlib.contextmanager
def desktop(width=WIDTH, height=HEIGHT, options=()):
    """`options` are further ones of scripts/with-desktop."""
    with contextlib.ExitStack() as stack:
        yield Desktop(stack, width, height, options)


def newest_capture(place):
    """The full-size picture that the program kept of its last capture."""
    folder = os.path.join(place.folder, ".orvane/captures")
    return max((os.path.join(folder, name) for name in os.listdir(folder)), key=os.path.getmtime)


def missing(programs):
    return [program for program in programs if shutil.which(program) is None]
