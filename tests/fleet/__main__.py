"""Twenty simulated Macs and a real Prometheus: what is disturbed must fire, nothing else, and resolve when it is mended.

Run it through scripts/test-fleet.
"""

import argparse
import json
import pathlib
import random
import re
import signal
import subprocess
import sys
import tempfile
import time

from engine import Engine
from mac import BIN, end_fleet, start_fleet

MACHINES = sorted((pathlib.Path(__file__).resolve().parents[2] / "machines").glob("*.json"))
COUNT = 20
STARTED = time.monotonic()


def say(text):
    print(f"{time.monotonic() - STARTED:4.0f} s  {text}", flush=True)


def check(is_true, text):
    if not is_true:
        sys.exit(f"test-fleet: {text}")


class Disturbance:
    """What is done to a Mac, how it is mended, and the alert that it must cause."""

    def __init__(self, what, mac, alert, do, mend, key=None):
        self.what, self.mac, self.do, self.mend = what, mac, do, mend
        self.expected = (alert, mac.name, key)


def fan_stops(mac, reading):
    key = reading(mac, "fans", lambda entry: entry["minvalue"] > 0 and entry["value"] > 0)
    return Disturbance(f"fan {key[0]} stops", mac, "OrvFanStopped", lambda: mac.set("SetFanSpeed", key[0], 0),
                       lambda: mac.set("SetFanSpeed", *key), key[0])


# Not a core: one that reads too low is shown with another one's temperature.
def sensor_vanishes(mac, reading):
    key = reading(mac, "temperature",
                  lambda entry: 20 < entry["value"] < 100 and not entry["title"].startswith("Core "))
    return Disturbance(f"sensor {key[0]} vanishes", mac, "OrvSensorVanished", lambda: mac.set("SetTemperature", key[0], 1),
                       lambda: mac.set("SetTemperature", *key), key[0])


def sleeps(mac, _):
    return Disturbance("sleeps", mac, "OrvReadingsStale", lambda: mac.simulate("Sleep"), lambda: mac.simulate("Wake"))


def helper_is_killed(mac, _):
    return Disturbance("its helper is killed", mac, "OrvReadingsStale", mac.end_helper, mac.start_helper)


def helper_is_stopped(mac, _):
    return Disturbance("its helper is stopped", mac, "OrvReadingsStale", lambda: mac.helper.send_signal(signal.SIGSTOP),
                       lambda: mac.helper.send_signal(signal.SIGCONT))


def writer_is_stopped(mac, _):
    return Disturbance("nobody writes its file", mac, "OrvReadingsStale", lambda: mac.signal_writer(signal.SIGSTOP),
                       lambda: mac.signal_writer(signal.SIGCONT))


def plan(fleet, chance):
    """Each disturbance on a Mac of its own that can have it."""
    def reading(mac, kind, fits):
        reply = subprocess.run([BIN / "orvctl", "thermal", "--json"], env=mac.environment, check=True, capture_output=True)
        found = [(key, entry["value"]) for key, entry in json.loads(reply.stdout).items()
                 if entry["type"] == kind and fits(entry)]
        return chance.choice(found) if found else None

    disturbances, free = [], chance.sample(fleet, len(fleet))
    for make in (fan_stops, sensor_vanishes, sensor_vanishes, sleeps, helper_is_killed, helper_is_stopped,
                 writer_is_stopped):
        wants_fan = make is fan_stops
        mac = next(mac for mac in free
                   if not wants_fan or re.search(r"^orv_fan_rpm.* [1-9]", mac.file.read_text(), re.MULTILINE))
        free.remove(mac)
        disturbances.append(make(mac, reading))
    return disturbances


def check_start(engine, fleet):
    everybody = {mac.name for mac in fleet}
    check(engine.wait(60, lambda: set(engine.query("count by (instance) (orv_temperature_celsius)")) == everybody),
          "Prometheus does not see the temperatures of every Mac")
    check(engine.query("node_textfile_scrape_error") == dict.fromkeys(everybody, 0), "a node exporter refuses a file")
    for mac in fleet:
        linted = subprocess.run(["promtool", "check", "metrics"], input=mac.file.read_bytes(), capture_output=True)
        check((linted.returncode, linted.stdout + linted.stderr) == (0, b""), f"promtool complains: {linted.stderr}")
        written = len(re.findall(r"^orv_", mac.file.read_text(), re.MULTILINE))
        check(engine.query(f'count({{__name__=~"orv_.*", instance="{mac.name}"}}) by (instance)')[mac.name] == written,
              f"not every series of {mac.name} was taken")
    check(not engine.firing(), f"something fires before anything was done: {engine.firing()}")


def disturb_and_mend(engine, disturbances):
    expected = {disturbance.expected for disturbance in disturbances}
    for disturbance in disturbances:
        disturbance.do()
        say(f"{disturbance.mac.name} ({disturbance.mac.machine.stem}): {disturbance.what}")
    check(engine.wait(170, lambda: engine.firing() == expected),
          f"firing: {sorted(engine.firing())}, expected: {sorted(expected)}")
    say(f"these {len(expected)} fire, and nothing else")
    for disturbance in disturbances:
        disturbance.mend()
    check(engine.wait(60, lambda: not engine.firing()), f"still firing after all was mended: {engine.firing()}")
    say("all is mended, and nothing fires")


def main():
    parser = argparse.ArgumentParser(prog="test-fleet", description=__doc__.splitlines()[0])
    parser.add_argument("--seed", type=int, default=random.randrange(10**6))
    seed = parser.parse_args().seed
    say(f"seed {seed}")
    with tempfile.TemporaryDirectory(prefix="orv-fleet-", ignore_cleanup_errors=True) as folder:
        fleet = start_fleet(COUNT, MACHINES, pathlib.Path(folder))
        engine = None
        try:
            engine = Engine(fleet, pathlib.Path(folder))
            check_start(engine, fleet)
            say(f"{len(fleet)} Macs are scraped, and nothing fires")
            disturb_and_mend(engine, plan(fleet, random.Random(seed)))
        finally:
            if engine:
                engine.end()
            end_fleet(fleet)


if __name__ == "__main__":
    main()
