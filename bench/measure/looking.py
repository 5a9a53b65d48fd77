"""What the full-screen view costs: processor time beside a plain watcher, and bytes on the line."""

import contextlib
import fcntl
import json
import os
import pathlib
import pty
import random
import select
import struct
import subprocess
import termios
import threading
import time

from bench import BIN, START_UP
from living import SOFTWARE_INTERVAL
from rows import Row, at_most

MINUTES = 5
WIDTH, HEIGHT = 80, 24
LARGEST = pathlib.Path(__file__).resolve().parents[2] / "machines/macbookpro-m4pro.json"
STEPS = 200


class CountedTerminal:
    """Takes what is written to it, at once."""

    def __init__(self):
        self.controller, self.device = pty.openpty()
        fcntl.ioctl(self.device, termios.TIOCSWINSZ, struct.pack("HHHH", HEIGHT, WIDTH, 0, 0))
        self.bytes = 0
        self.is_open = True
        self.reader = threading.Thread(target=self.read)
        self.reader.start()

    def read(self):
        while self.is_open:
            if select.select([self.controller], [], [], 0.2)[0]:
                self.bytes += len(os.read(self.controller, 65536))

    def close(self):
        self.is_open = False
        self.reader.join()
        os.close(self.controller)
        os.close(self.device)


def processor_time(process):
    """Seconds, of all threads together."""
    return sum(int(task.read_text().split()[0]) for task in pathlib.Path(f"/proc/{process.pid}/task").glob("*/schedstat")) / 1e9


def changing_machine(bench):
    """A real machine of which a third of what is shown walks about, a degree or so each refresh."""
    shown = json.loads(subprocess.run([BIN / "orvctl", "thermal", "--json", "--simulate", LARGEST],
                                      stdout=subprocess.PIPE, check=True).stdout)
    machine = json.loads(LARGEST.read_text())
    chance = random.Random(1)
    rows = [row for row in machine["smc"] if row["key"] in shown and row["key"].startswith("T")]
    for row in rows[::3]:
        values = [50.0]
        while len(values) < STEPS:
            values.append(min(90.0, max(30.0, values[-1] + chance.uniform(-1.5, 1.5))))
        row.update(type="sp78", bytes=[f"{round(value * 256):04x}" for value in values])
    path = bench.folder / "changing.json"
    path.write_text(json.dumps(machine))
    return path, len(shown), len(rows[::3])


@contextlib.contextmanager
def looked_at(bench, environment):
    terminal = CountedTerminal()
    try:
        with bench.process(BIN / "orvctl", "top", stdin=terminal.device, stdout=terminal.device, start_new_session=True,
                           env=environment | {"TERM": "xterm-256color", "LC_ALL": "C.UTF-8"}) as process:
            yield process, terminal
    finally:
        terminal.close()


def top(bench):
    machine, shown, changing = changing_machine(bench)
    with bench.bus() as environment, bench.service(environment, "--simulate", machine), \
            bench.process(BIN / "orvctl", "watch", "--format", "jsonl", env=environment, stdout=subprocess.DEVNULL) as plain, \
            looked_at(bench, environment) as (process, terminal):
        time.sleep(START_UP)
        os.write(terminal.controller, b"u")  # the screen is full of readings, none of which is folded
        time.sleep(SOFTWARE_INTERVAL)
        before = terminal.bytes, processor_time(process), processor_time(plain)
        time.sleep(60 * MINUTES)
        after = terminal.bytes, processor_time(process), processor_time(plain)
    refreshes = 60 * MINUTES / SOFTWARE_INTERVAL
    written, figure, floor = ((end - begin) / refreshes for begin, end in zip(before, after))
    return [
        at_most(f"bytes that orvctl top writes for a refresh at {WIDTH}x{HEIGHT}, {changing} of {shown} readings changing, "
                f"over {MINUTES} minutes", "", round(written), 1000, unit="bytes"),
        Row("processor time of orvctl top for a refresh", "orvctl watch --format jsonl, of the same service meanwhile",
            f"{figure * 1e3:.2f} ms", f"{floor * 1e3:.2f} ms", round(figure / floor, 2), 2)]
