"""The tray application and the pipes to it."""

import json
import os
import statistics
import subprocess
import threading
import time

from desktop import Server, Trouble, desktop, end, eventually

PINGS = 500
CLIENTS, CALLS = 64, 100


class Application:
    """The application on a desktop, with a tray, until the desktop or the given stack ends."""

    def __init__(self, place, executable, stack=None):
        if not place.has_tray:
            place.open(["trayer"])
            place.has_tray = True
        self.process = subprocess.Popen([executable], env=place.environment, stdin=subprocess.DEVNULL,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        (stack or place.stack).callback(end, self.process)
        endpoint = os.path.join(place.folder, ".orvane/mcp-endpoint.json")
        eventually(lambda: os.path.exists(endpoint), "the application does not host the tools")
        self.command = [executable, "--mcp"]
        self.environment = place.environment

    def pipe(self, stack):
        return Server(stack, self.command, self.environment)

    def status(self):
        """Fields of /proc/PID/status in KiB."""
        return Server.memory(self)

    processor_seconds = Server.processor_seconds


def pings(pipe, count):
    """Milliseconds of each."""
    samples = []
    for _ in range(count):
        before, after, _ = pipe.request("ping")
        samples.append(1000 * (after - before))
    return samples


def starts(application, stack, count):
    """Milliseconds from the start of a pipe to the reply to `initialize`."""
    return [1000 * application.pipe(stack).initialize() for _ in range(count)]


def crowd(application, stack):
    """(milliseconds of each call, replies that were lost or another's) of many pipes at once."""
    pipes = [application.pipe(stack) for _ in range(CLIENTS)]
    for pipe in pipes:
        pipe.initialize()
    samples, wrong = [[] for _ in pipes], [0] * len(pipes)

    def call(number, pipe):
        descriptor, pending = pipe.process.stdout.fileno(), b""
        for turn in range(CALLS):
            marked = f"{number}-{turn}"
            before = time.perf_counter()
            pipe.process.stdin.write(json.dumps({"jsonrpc": "2.0", "id": marked, "method": "ping"}).encode() + b"\n")
            while b"\n" not in pending:
                block = os.read(descriptor, 1 << 16)
                if not block:
                    wrong[number] += CALLS - turn
                    return
                pending += block
            line, _, pending = pending.partition(b"\n")
            samples[number].append(1000 * (time.perf_counter() - before))
            if json.loads(line) != {"jsonrpc": "2.0", "id": marked, "result": {}}:
                wrong[number] += 1

    threads = [threading.Thread(target=call, args=entry) for entry in enumerate(pipes)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    return [sample for row in samples for sample in row], sum(wrong)


class Figures:
    """All that is measured of an application at rest and at work."""

    def __init__(self, executable, runs, idle_seconds):
        with desktop(1920, 1080) as place:
            application = Application(place, executable)
            time.sleep(5)
            before = application.processor_seconds()
            time.sleep(idle_seconds)
            self.idle_percent = 100 * (application.processor_seconds() - before) / idle_seconds
            self.resident_mebibytes = application.status()["VmRSS"] / 1024
            self.starts = starts(application, place.stack, runs)
            pipe = application.pipe(place.stack)
            pipe.initialize()
            pings(pipe, 50)
            self.pings = pings(pipe, PINGS)
            self.pipe_mebibytes = pipe.memory()["VmRSS"] / 1024
            self.crowd_calls, self.wrong = crowd(application, place.stack)
            if len(self.crowd_calls) + self.wrong < CLIENTS * CALLS:
                raise Trouble("calls are missing")
            self.median_ping = statistics.median(self.pings)
