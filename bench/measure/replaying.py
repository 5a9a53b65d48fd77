"""What it takes to replay a day, and to keep one."""

import os
import pathlib
import subprocess
import time

from bench import BIN
from rows import Row, at_most, ratio

HOURS = 24
KEYS = 360
RUNS = 3
SECONDS = 60  # for a day
MEGABYTE = 10**6


def recording(bench, keys, hours):
    path = bench.folder / f"recording-{keys}-{hours}"
    with open(path, "wb") as file:
        subprocess.run([BIN / "bench-recorded-day", str(keys), str(hours)], stdout=file, check=True)
    return path


def run(bench, *command):
    """Seconds by the clock, and those of the processor."""
    started = time.monotonic()
    process = subprocess.Popen(bench.pinned(*command), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise RuntimeError(f"{command[0]} ended with {process.returncode}")
    return time.monotonic() - started, usage.ru_utime + usage.ru_stime


def most_memory(bench, *command):
    """KiB. What a child's usage says would count this program's pages too."""
    most = 0
    with bench.process(*bench.pinned(*command), stdout=subprocess.DEVNULL) as process:
        while process.poll() is None:
            lines = pathlib.Path(f"/proc/{process.pid}/status").read_text().splitlines()
            most = max([most, *(int(line.split()[1]) for line in lines if line.startswith("VmHWM"))])
            time.sleep(0.005)
    return most


def replay(bench):
    day, hour = recording(bench, KEYS, HOURS), recording(bench, KEYS, 1)
    play = BIN / "orvctl", "replay"
    played = [run(bench, *play, day) for _ in range(RUNS)]
    floors = [run(bench, BIN / "bench-replay-floor", day) for _ in range(RUNS)]
    memory, memory_of_hour = most_memory(bench, *play, day), most_memory(bench, *play, hour)
    kept = bench.folder / "kept"
    run(bench, BIN / "orvctl", "record", "--simulate", recording(bench, 60, HOURS), "--for", f"{HOURS}h", "-o", kept)
    elapsed, figure, floor = min(played)[0], min(each for _, each in played), min(each for _, each in floors)
    return [Row(f"replay of {HOURS} hours of {KEYS} keys, {day.stat().st_size / MEGABYTE:.0f} MB", "the clock",
                f"{elapsed:.3g} s", f"{SECONDS} s", round(elapsed, 2), SECONDS, unit="s"),
            ratio("the same, processor time", "the same file read by lines, and the same refreshes", figure, floor,
                  None, unit="s"),
            Row("the same, most memory", "of one hour of it", f"{memory} KiB", f"{memory_of_hour} KiB",
                memory - memory_of_hour, 512, unit="KiB more"),
            at_most(f"recording of {HOURS} hours of 60 keys, half of which change at each step", "",
                    round(kept.stat().st_size / MEGABYTE, 2), 10, unit="MB")]
