#!/usr/bin/python3
"""Measures the helper against floors taken in the same run, and says which goals hold. Run it through scripts/bench.

Only ratios are judged; the times beside them say what they were made of.
"""

import argparse
import contextlib
import dataclasses
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

BIN = pathlib.Path(os.environ["ORV_BENCH_BIN"])
NAME = "org.orv.SMCHelper"
SOFTWARE_INTERVAL = 5.0  # seconds between two refreshes
PROFILER_INTERVAL = 120.0
START_UP = 3.0  # seconds until a service has settled


@dataclasses.dataclass
class Row:
    what: str
    figure: str
    floor: str
    value: float
    must: float
    stretch: float | None = None
    unit: str = "times"

    @property
    def holds(self):
        return self.value <= self.must

    def cells(self):
        return [self.what, self.figure, self.floor, f"{self.value:.6g} {self.unit}".strip(), f"{self.must:g}",
                "" if self.stretch is None else f"{self.stretch:g}", "holds" if self.holds else "falls short"]


def ratio(what, figure, floor, must, stretch=None, unit="us"):
    return Row(what, f"{figure:.4g} {unit}", f"{floor:.4g} {unit}", round(figure / floor, 3), must, stretch)


def exactly(what, figure, expected):
    """A count that must be met, neither more nor less."""
    return Row(what, f"{figure:g}", f"{expected:g}", abs(figure - expected), 0, unit="off")


def run(*command, **options):
    done = subprocess.run([str(each) for each in command], text=True, stdout=subprocess.PIPE, check=True, **options)
    return json.loads(done.stdout)


class Bench:
    def __init__(self, options, folder):
        self.options = options
        self.folder = pathlib.Path(folder)
        self.core = max(os.sched_getaffinity(0))

    def machine(self, *options):
        path = self.folder / ("machine" + "".join(options) + ".json")
        path.write_bytes(subprocess.run([BIN / "bench-machine", *options], stdout=subprocess.PIPE, check=True).stdout)
        return path

    def pinned(self, *command):
        return ["taskset", "-c", str(self.core), *map(str, command)]

    @contextlib.contextmanager
    def process(self, *command, **options):
        process = subprocess.Popen([str(each) for each in command], **options)
        try:
            yield process
        finally:
            process.kill()
            process.wait()

    @contextlib.contextmanager
    def bus(self, *configuration):
        """A private session bus; the environment of its clients."""
        arguments = configuration or ("--session",)
        with self.process(*self.pinned("dbus-daemon", *arguments, "--nofork", "--print-address"),
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as daemon:
            address = daemon.stdout.readline().decode().strip()
            yield {**os.environ, "DBUS_SESSION_BUS_ADDRESS": address}

    @contextlib.contextmanager
    def service(self, environment, *arguments):
        """The helper with its name claimed."""
        with self.process(*self.pinned(BIN / "orv-smc-helper", *arguments), env=environment) as service:
            deadline = time.monotonic() + 60
            while subprocess.run([BIN / "orvctl", "thermal"], env=environment, stdout=subprocess.DEVNULL,
                                 stderr=subprocess.DEVNULL, check=False).returncode != 0:
                if service.poll() is not None or time.monotonic() > deadline:
                    raise RuntimeError("the service does not answer")
                time.sleep(0.1)
            yield service

    @contextlib.contextmanager
    def simulated(self, *machine_options):
        with self.bus() as environment:
            with self.service(environment, "--simulate", self.machine(*machine_options)) as service:
                yield service, environment

    # Each of the following measures and returns rows.

    def request(self):
        with self.simulated() as (_, environment):
            runs = [run(*self.pinned(BIN / "bench-requests", "floor", self.options.requests), env=environment)
                    for _ in range(5)]

        def row(what, percentile, *goals):
            # Who shares the processor slows both sides, but not alike: the run that was disturbed least.
            times = min(runs, key=lambda each: each["ping"][percentile])
            return ratio(what, times["thermal"][percentile], times["ping"][percentile], *goals)

        return [row("thermal request of 60 entries, p50; Peer.Ping", "p50", 3.8, 3.4), row("the same, p99", "p99", 3.2)]

    def slow_refresh(self):
        with self.simulated() as (_, idle), self.simulated("--exchange-delay", "80") as (_, slow):
            times = run(*self.pinned(BIN / "bench-requests", "slow", self.options.requests,
                                     idle["DBUS_SESSION_BUS_ADDRESS"], slow["DBUS_SESSION_BUS_ADDRESS"]))
        return [ratio("thermal request while a refresh takes seconds, p99; idle", times["slow"]["p99"],
                      times["idle"]["p99"], 1.3)]

    def mixed_replies(self):
        with self.simulated("--stepping", "--exchange-delay", "0.02") as (_, environment):
            seen = run(BIN / "bench-requests", "mixed", self.options.replies, env=environment)
        what = f"replies mixed of two refreshes, of {seen['replies']} over {seen['changes']} refreshes"
        return [Row(what, str(seen["mixed"]), "0", seen["mixed"] + (seen["changes"] < 10), 0, unit="")]

    def medians(self, program):
        report = run(*self.pinned(BIN / program, "--benchmark_format=json", "--benchmark_min_time=0.1",
                                  "--benchmark_repetitions=11", "--benchmark_enable_random_interleaving=true",
                                  "--benchmark_report_aggregates_only=true"), stderr=subprocess.DEVNULL)
        return {each["run_name"]: each for each in report["benchmarks"] if each["aggregate_name"] == "median"}

    def host(self):
        median = self.medians("bench-host")
        time_of = {name: each["cpu_time"] for name, each in median.items()}
        return [ratio("refresh through the kernel driver's 66 files; one pread each", time_of["refreshThroughFiles"],
                      time_of["preadOfFiles"], 1.6),
                ratio("the same; libsensors on those files", time_of["refreshThroughFiles"],
                      time_of["libsensorsOnFiles"], 0.1),
                ratio("refresh through key_at_index; the same three calls a key", time_of["refreshThroughIndex"],
                      time_of["threeCallsAKey"], 1.6)]

    def code(self):
        median = self.medians("bench-code")
        refresh, once = median["refreshAndReply"], median["exchangesOfOneRefresh"]
        rows = [ratio("refresh of 66 keys and its reply body; bare loop", refresh["cpu_time"],
                      median["bareLoop"]["cpu_time"], 1.6, 1.3),
                Row("allocations an entry of that", f"{refresh['allocationsPerEntry']:.3f}", "",
                    round(refresh["allocationsPerEntry"], 3), 3, unit=""),
                exactly("exchanges of a refresh; two a key", refresh["exchanges"], 2 * 66),
                exactly("exchanges of the first refresh; and the count, and count + 1", once["first"],
                        2 * 66 + 2 + 67),
                exactly("exchanges of a request", once["request"], 0)]
        for size in ("20000", "2000000"):
            reader, document = median["reportReader/" + size], median["documentOfReport/" + size]
            rows.append(ratio(f"report reader on {int(size) // 1000} KB; nlohmann's document", reader["cpu_time"],
                              document["cpu_time"], 1))
            rows.append(ratio("the same, most heap", reader["peakHeap"] / 1024, document["peakHeap"] / 1024, 1,
                              unit="KiB"))
        return rows

    def wake_ups(self):
        minutes = self.options.minutes
        with self.simulated() as (service, _):
            time.sleep(START_UP)
            tasks = [path for path in pathlib.Path(f"/proc/{service.pid}/task").iterdir()]
            before = [switches(task) for task in tasks]
            time.sleep(60 * minutes)
            woken = sum(switches(task) - earlier for task, earlier in zip(tasks, before))
        # Two minutes of waiting may hold one tick more than two minutes of ticks.
        children = (60 * minutes + START_UP) // PROFILER_INTERVAL
        rate = (woken - 3 * children) / minutes
        return [Row(f"idle wake-ups a minute over {minutes:g} minutes, beside 3 for each of {children:g} children; "
                    f"{len(tasks)} threads", f"{woken} in all", f"{60 / SOFTWARE_INTERVAL:g}", round(rate, 2), 12.5,
                    unit="a minute")]

    def memory(self):
        os.sync()  # pages of a program that was just built count as dirty
        with self.bus() as environment:
            # One after the other and each with libraries of its own, so that neither the other nor what else runs on
            # this machine carries a part of their pages.
            with self.service(self.with_own_libraries(environment, "orv-smc-helper")) as service:
                time.sleep(START_UP)
                figure = memory_of(service.pid)
            with self.process(BIN / "bench-empty", env=self.with_own_libraries(environment, "bench-empty")) as empty:
                time.sleep(START_UP)
                floor = memory_of(empty.pid)
        what = {"Private_Dirty": "idle memory without an SMC, private and dirty; an empty program with two threads",
                "Pss": "the same, proportional share"}
        return [ratio(what[kind], figure[kind], floor[kind], 1.25, unit="KiB") for kind in what]

    def with_own_libraries(self, environment, program):
        folder = self.folder / f"libraries-of-{program}"
        folder.mkdir()
        listed = subprocess.run(["ldd", BIN / program], text=True, stdout=subprocess.PIPE, check=True).stdout
        for library in [line.split()[2] for line in listed.splitlines() if " => " in line]:
            shutil.copy(library, folder)
        os.sync()
        return {**environment, "LD_LIBRARY_PATH": str(folder)}

    def activation(self):
        machine = self.machine("--other-keys", "434")
        services = self.folder / "services"
        services.mkdir()
        for name, command in ((NAME, f"{BIN}/orv-smc-helper --simulate {machine}"),
                              ("org.orv.Empty", f"{BIN}/bench-empty org.orv.Empty")):
            (services / f"{name}.service").write_text(f"[D-BUS Service]\nName={name}\nExec={command}\n")
        configuration = self.folder / "bus.conf"
        configuration.write_text(f"""<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen>
            <servicedir>{services}</servicedir><policy context="default"><allow send_destination="*"/><allow own="*"/>
            <allow eavesdrop="true"/></policy></busconfig>""")
        with self.bus(f"--config-file={configuration}") as environment:
            times = run(*self.pinned(BIN / "bench-activation", self.options.activations), env=environment)
        return [ratio("activation to the first reply, 500 keys, p50; an empty service", times["service"],
                      times["empty"], 1.6, unit="ms")]

    def endurance(self):
        life = run(*self.pinned(BIN / "bench-endurance", self.options.refreshes))
        what = f"{self.options.refreshes} refreshes in {life['seconds']:.0f} s, growth: "
        # The allocator may hand out a block larger than asked for by what it cannot split off: no bytes exactly.
        return [Row(what + kind, f"{life[kind][1]:,}", f"{life[kind][0]:,}", max(0, life[kind][1] - life[kind][0]), most,
                    unit="") for kind, most in (("allocations", 0), ("heap", 1024), ("descriptors", 0))]


def switches(task):
    return next(int(line.split()[1]) for line in (task / "status").read_text().splitlines()
                if line.startswith("voluntary_ctxt_switches"))


def memory_of(process):
    lines = pathlib.Path(f"/proc/{process}/smaps_rollup").read_text().splitlines()[1:]
    return {line.split(":")[0]: int(line.split()[1]) for line in lines}


def print_table(rows):
    table = [["what; floor", "figure", "floor", "ratio", "must", "stretch", ""], *(row.cells() for row in rows)]
    widths = [max(len(cells[column]) for cells in table) for column in range(len(table[0]))]
    for cells in table:
        print("  ".join(cell.ljust(width) for cell, width in zip(cells, widths)).rstrip())


MEASURES = ("request", "slow_refresh", "mixed_replies", "code", "host", "wake_ups", "memory", "activation", "endurance")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("only", nargs="*", metavar="MEASURE", help="one of " + ", ".join(MEASURES) + " (all)")
    parser.add_argument("--json", action="store_true", help="print the rows as JSON")
    parser.add_argument("--full", action="store_true", help="10^6 replies and refreshes, 20 minutes of idling")
    parser.add_argument("--requests", type=int, default=20_000)
    parser.add_argument("--activations", type=int, default=100)
    options = parser.parse_args()
    unknown = set(options.only) - set(MEASURES)
    if unknown:
        parser.error("no such measure: " + ", ".join(sorted(unknown)))
    options.replies, options.refreshes = (10**6, 10**6) if options.full else (20_000, 10**5)
    options.minutes = 20 if options.full else 2
    rows = []
    with tempfile.TemporaryDirectory(prefix="orv-bench-") as folder:
        bench = Bench(options, folder)
        for measure in options.only or MEASURES:
            print(f"measuring {measure}", file=sys.stderr, flush=True)
            rows += getattr(bench, measure)()
    if options.json:
        print(json.dumps([{**dataclasses.asdict(row), "holds": row.holds} for row in rows], indent=2))
    else:
        print_table(rows)
    return 0 if all(row.holds for row in rows) else 1


if __name__ == "__main__":
    sys.exit(main())
