"""The programs that are measured, what starts them, and the private buses that they meet on."""

import contextlib
import json
import os
import pathlib
import subprocess
import time

BIN = pathlib.Path(os.environ["ORV_BENCH_BIN"])
NAME = "org.orv.SMCHelper"
START_UP = 3.0  # seconds until a service has settled


def run(*command, **options):
    done = subprocess.run([str(each) for each in command], text=True, stdout=subprocess.PIPE, check=True, **options)
    return json.loads(done.stdout)


def wait_until_done(service, environment, *command):
    """Returns when the command succeeds."""
    deadline = time.monotonic() + 60
    while subprocess.run(command, env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                         check=False).returncode != 0:
        if service.poll() is not None or time.monotonic() > deadline:
            raise RuntimeError("the service does not answer")
        time.sleep(0.1)


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
            wait_until_done(service, environment, BIN / "orvctl", "thermal")
            yield service

    @contextlib.contextmanager
    def bare_service(self, environment, machine):
        """The floor of a request, with its name claimed."""
        with self.process(*self.pinned(BIN / "bench-bare", machine), env=environment) as service:
            wait_until_done(service, environment, "busctl", "--user", "call", "org.freedesktop.DBus",
                            "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetNameOwner", "s", "org.orv.Bare")
            yield service

    @contextlib.contextmanager
    def simulated(self, *machine_options):
        with self.bus() as environment:
            with self.service(environment, "--simulate", self.machine(*machine_options)) as service:
                yield service, environment

    def quickest(self, program):
        """By benchmark. Those of one program run in turns; of eleven the one that was disturbed least counts."""
        report = run(*self.pinned(BIN / program, "--benchmark_format=json", "--benchmark_min_time=0.1",
                                  "--benchmark_repetitions=11", "--benchmark_enable_random_interleaving=true"),
                     stderr=subprocess.DEVNULL)
        turns = [each for each in report["benchmarks"] if each["run_type"] == "iteration"]
        turns.sort(key=lambda each: -each["cpu_time"])
        return {each["run_name"]: each for each in turns}

    def instructions(self, work):
        """How many the work takes, which no machine changes."""
        counts = self.folder / "counts"
        subprocess.run(["valgrind", "--quiet", "--tool=callgrind", "--collect-atstart=no", "--toggle-collect=counted",
                        f"--callgrind-out-file={counts}", BIN / "bench-instructions", work], check=True)
        return next(int(line.split()[1]) for line in counts.read_text().splitlines() if line.startswith("totals:"))
