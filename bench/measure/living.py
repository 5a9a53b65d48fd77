"""What the helper costs while it lives: wake-ups, memory, growth."""

import os
import pathlib
import shutil
import subprocess
import time

from bench import BIN, START_UP, run
from rows import Row, ratio

SOFTWARE_INTERVAL = 5.0  # seconds between two refreshes
PROFILER_INTERVAL = 120.0


def wake_ups(bench):
    minutes = bench.options.minutes
    with bench.simulated() as (service, _):
        time.sleep(START_UP)
        threads = len(tasks_of(service))
        before = switches_of(service)
        time.sleep(60 * minutes)
        woken = switches_of(service) - before
    # Two minutes of waiting may hold one tick more than two minutes of ticks.
    children = (60 * minutes + START_UP) // PROFILER_INTERVAL
    rate = (woken - 3 * children) / minutes
    return [Row(f"idle wake-ups a minute over {minutes:g} minutes, {threads} threads",
                f"one a refresh; beside them 3 for each of {children:g} children", f"{woken} in all",
                f"{60 / SOFTWARE_INTERVAL:g}", round(rate, 2), 12.5, unit="a minute")]


def memory(bench):
    os.sync()  # pages of a program that was just built count as dirty
    with bench.bus() as environment:
        # One after the other and each with libraries of its own, so that neither the other nor what else runs on
        # this machine carries a part of their pages.
        with bench.service(with_own_libraries(bench, environment, "orv-smc-helper")) as service:
            time.sleep(START_UP)
            figure = memory_of(service.pid)
        with bench.process(BIN / "bench-empty", env=with_own_libraries(bench, environment, "bench-empty")) as empty:
            time.sleep(START_UP)
            floor = memory_of(empty.pid)
    does = "a program of two threads, each in an event loop, one on the bus"
    return [ratio(what, does, figure[kind], floor[kind], 1.25, unit="KiB")
            for what, kind in (("idle memory without an SMC, private and dirty", "Private_Dirty"),
                               ("the same, proportional share", "Pss"))]


def endurance(bench):
    life = run(*bench.pinned(BIN / "bench-endurance", bench.options.refreshes))
    what = f"{bench.options.refreshes} refreshes in {life['seconds']:.0f} s, growth: "
    # The allocator may hand out a block larger than asked for by what it cannot split off: no bytes exactly.
    return [Row(what + kind, "the most in refreshes 1,001 to 10,000", f"{life[kind][1]:,}", f"{life[kind][0]:,}",
                max(0, life[kind][1] - life[kind][0]), most, unit="")
            for kind, most in (("allocations", 0), ("heap", 1024), ("descriptors", 0))]


def with_own_libraries(bench, environment, program):
    folder = bench.folder / f"libraries-of-{program}"
    folder.mkdir()
    listed = subprocess.run(["ldd", BIN / program], text=True, stdout=subprocess.PIPE, check=True).stdout
    for library in [line.split()[2] for line in listed.splitlines() if " => " in line]:
        shutil.copy(library, folder)
    os.sync()
    return {**environment, "LD_LIBRARY_PATH": str(folder)}


def tasks_of(process):
    return list(pathlib.Path(f"/proc/{process.pid}/task").iterdir())


def switches_of(process):
    """How often its threads have begun to wait."""
    lines = [line for task in tasks_of(process) for line in (task / "status").read_text().splitlines()]
    return sum(int(line.split()[1]) for line in lines if line.startswith("voluntary_ctxt_switches"))


def memory_of(process):
    lines = pathlib.Path(f"/proc/{process}/smaps_rollup").read_text().splitlines()[1:]
    return {line.split(":")[0]: int(line.split()[1]) for line in lines}
