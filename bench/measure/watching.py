"""What a thousand watchers cost, and how soon they are told."""

import contextlib
import json
import subprocess
import time

from bench import BIN, START_UP
from living import SOFTWARE_INTERVAL, switches_of
from rows import Row, at_most, exactly, ratio

WATCHERS = 1000
ROUNDS = 40
STEPS = 100  # of a stepping machine's readings


class Crowd:
    def __init__(self, process, service):
        self.process, self.service = process, service
        self.answer()

    def answer(self):
        return json.loads(self.process.stdout.readline())

    def do(self, *command):
        self.process.stdin.write(" ".join(map(str, command)) + "\n")
        self.process.stdin.flush()
        return self.answer()

    def wake_ups_for_each(self, command):
        """Without those that the service's own refreshes cost meanwhile, at two each."""
        before, started = switches_of(self.service), time.monotonic()
        self.do(command)
        own = 2 * (time.monotonic() - started) / SOFTWARE_INTERVAL
        return round((switches_of(self.service) - before - own) / WATCHERS, 2)


@contextlib.contextmanager
def crowd(bench, service, environment):
    with bench.process(BIN / "bench-watchers", WATCHERS, env=environment, text=True, stdin=subprocess.PIPE,
                       stdout=subprocess.PIPE) as process:
        yield Crowd(process, service)


@contextlib.contextmanager
def counting_service(bench):
    """A simulated Mac one of whose sensors shows, by its steps, how often it was read."""
    path = bench.machine()
    machine = json.loads(path.read_text())
    sensor = next(row for row in machine["smc"] if row["key"].startswith("T"))
    sensor["bytes"] = [f"{degrees:02x}00" for degrees in range(20, 20 + STEPS)]
    path.write_text(json.dumps(machine))
    with bench.bus() as environment, bench.service(environment, "--simulate", path) as service:
        yield service, environment, sensor["key"]


def reads_and_refreshes(watchers, environment, key):
    """Both counted on, from somewhere."""
    while True:
        before = watchers.do("heard")
        reply = subprocess.run([BIN / "orvctl", "thermal", "--json"], env=environment, stdout=subprocess.PIPE,
                               check=True)
        if watchers.do("heard") == before:
            return round(json.loads(reply.stdout)[key]["value"]), before["refreshes"]


def watch(bench):
    with counting_service(bench) as (service, environment, key):
        time.sleep(START_UP)
        with crowd(bench, service, environment) as watchers:
            claims = watchers.wake_ups_for_each("claim")
            before, minutes = switches_of(service), bench.options.minutes
            time.sleep(60 * minutes)
            claimed = round((switches_of(service) - before) / minutes, 2)
            reads, refreshes = reads_and_refreshes(watchers, environment, key)
            watchers.do("ask")
            told = watchers.do("told", ROUNDS)
            later_reads, later_refreshes = reads_and_refreshes(watchers, environment, key)
            bare = watchers.do("bare", ROUNDS)
            releases = watchers.wake_ups_for_each("release")
            watchers.do("claim")
            departures = watchers.wake_ups_for_each("leave")
    each = f"of {WATCHERS} watchers"
    return [
        ratio(f"notice of a refresh, to each {each}, p99", "a signal without content, by the same bus, to as many",
              told["p99"], bare["p99"], 3),
        exactly(f"notices that one {each} missed, or was given twice, of {told['refreshes']} refreshes", "none",
                told["missed"] + told["twice"], 0),
        exactly(f"readings of a sensor while {WATCHERS} watch and ask", "one for each refresh",
                (later_reads - reads) % STEPS, later_refreshes - refreshes),
        Row(f"wake-ups a minute while claimed, over {minutes:g} minutes", "two a refresh", f"{claimed:g}", "24", claimed,
            24.5, unit="a minute"),
        *(at_most(f"wake-ups for each {what}, {each}", "", figure, 3)
          for what, figure in (("Claim", claims), ("Release", releases), ("departure", departures)))]
