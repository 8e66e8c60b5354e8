"""A movie of a moving picture: how many frames, how evenly, and at what cost."""

import contextlib
import json
import os
import subprocess
import time

from desktop import Server, Trouble, desktop, eventually

WIDTH, HEIGHT, RATE = 1920, 1080, 30
# The preset is the program's own (OrvanePlatform/media/ffmpeg/H264Encoder.cpp).
PRESET = "superfast"
BITS_PER_SECOND = WIDTH * HEIGHT * 2
PLAYER = "ffplay"


def show_moving_picture(place, server):
    # Drawn without OpenGL, whose software renderer alone would keep a processor busy.
    place.environment["SDL_RENDER_DRIVER"] = "software"
    place.environment["SDL_FRAMEBUFFER_ACCELERATION"] = "0"
    place.open([PLAYER, "-loglevel", "quiet", "-noborder", "-left", "0", "-top", "0", "-x", str(WIDTH), "-y", str(HEIGHT),
                "-f", "lavfi", f"testsrc2=size={WIDTH}x{HEIGHT}:rate={RATE}"])
    eventually(lambda: any(window["appName"] == PLAYER for window in server.windows()), "the player does not open")


def stolen_seconds():
    """Processor time that this machine, if it is a virtual one, wanted and did not get."""
    with open("/proc/stat", encoding="ascii") as stat:
        return int(stat.readline().split()[8]) / os.sysconf("SC_CLK_TCK")


def frame_times(path):
    """Seconds from the beginning of the movie, ascending."""
    listed = subprocess.run(["ffprobe", "-v", "error", "-select_streams", "v", "-show_entries", "packet=pts_time", "-of",
                             "json", path], check=True, capture_output=True, text=True).stdout
    return sorted(float(packet["pts_time"]) for packet in json.loads(listed)["packets"])


class Movie:
    """What came of one recording."""

    def __init__(self, path, seconds, processor_seconds, stolen):
        times = frame_times(path)
        gaps = [later - earlier for earlier, later in zip(times, times[1:])]
        self.rate = len(times) / seconds
        self.longest_gap_ms = 1000 * max(gaps)
        self.late = sum(1 for gap in gaps if gap > 0.050)
        self.processor = processor_seconds / seconds
        self.stolen = stolen / seconds
        self.mebibytes = os.path.getsize(path) / (1 << 20)


def record(place, seconds):
    """The program records the player's window."""
    with contextlib.ExitStack() as stack:
        server = Server(stack, place.orvane, place.environment)
        server.initialize()
        server.call("start_recording", app_name=PLAYER)
        stolen, processor, began = stolen_seconds(), server.processor_seconds(), time.monotonic()
        time.sleep(seconds)
        text = server.call("stop_recording")[1][0]["text"]
        used, lasted = server.processor_seconds() - processor, time.monotonic() - began
    folder = next(line.partition(": ")[2] for line in text.splitlines() if line.startswith("Session path: "))
    stolen = stolen_seconds() - stolen
    return Movie(os.path.join(folder, "recording.mp4"), lasted, used, stolen)


def grab(place, seconds):
    """The ffmpeg command records the display."""
    path = os.path.join(place.folder, "grabbed.mp4")
    stolen = stolen_seconds()
    process = subprocess.Popen(
        ["ffmpeg", "-loglevel", "error", "-y", "-f", "x11grab", "-framerate", str(RATE), "-video_size", f"{WIDTH}x{HEIGHT}",
         "-draw_mouse", "0", "-i", place.environment["DISPLAY"], "-t", str(seconds), "-c:v", "libx264", "-preset", PRESET,
         "-b:v", str(BITS_PER_SECOND), "-g", str(2 * RATE), "-bf", "0", "-pix_fmt", "yuv420p", path],
        env=place.environment, stdin=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise Trouble("ffmpeg fails")
    return Movie(path, seconds, usage.ru_utime + usage.ru_stime, stolen_seconds() - stolen)


def movies(orvane, runs, seconds):
    """{name: [Movie]}, the competitors taking turns."""
    with desktop(WIDTH, HEIGHT) as place:
        place.orvane = [orvane, "--mcp"]
        server = Server(place.stack, place.orvane, place.environment)
        server.initialize()
        show_moving_picture(place, server)
        competitors = {"orvane start_recording": record, "ffmpeg x11grab": grab}
        made = {name: [] for name in competitors}
        for _ in range(runs):
            for name, run in competitors.items():
                made[name].append(run(place, seconds))
        return made


def memory_over_time(orvane, minutes):
    """MiB that a recording holds after each minute."""
    with desktop(WIDTH, HEIGHT) as place, contextlib.ExitStack() as stack:
        server = Server(stack, [orvane, "--mcp"], place.environment)
        server.initialize()
        show_moving_picture(place, server)
        server.call("start_recording", app_name=PLAYER)
        series = []
        for _ in range(minutes):
            time.sleep(60)
            series.append(server.memory()["VmRSS"] / 1024)
        server.call("stop_recording")
        return series
