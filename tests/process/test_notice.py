"""Who is told of a refresh, and when it was: org.orv.Sensors1 and orvctl watch."""

import csv
import io
import json
import os
import pathlib
import queue
import re
import signal
import subprocess
import threading
import time
import unittest

import jsonschema

from support import BIN, NAME, PATH, PATIENCE, ProcessTest, device, mac, report
from wire import CALL, HELPER_OBJECT, Client, message

SENSORS = "org.orv.Sensors1"
SCHEMA = pathlib.Path(__file__).resolve().parents[2] / "packaging/schemas/orv.reading-1.json"
FORMATS = "table", "jsonl", "csv", "waybar", "i3bar"
INTERVAL = 5  # seconds


def sensors(method):
    return message(CALL, **HELPER_OBJECT, interface=SENSORS, member=method)


CLAIM, RELEASE = sensors("Claim"), sensors("Release")


def boot_time():
    return time.clock_gettime(time.CLOCK_BOOTTIME)


class Lines:
    """What a process writes to a pipe, line by line as it comes."""

    def __init__(self, pipe):
        self.queue = queue.Queue()
        threading.Thread(target=self.read, args=(pipe,), daemon=True).start()

    def read(self, pipe):
        try:
            for line in pipe:
                self.queue.put(line)
        except ValueError:  # closed
            pass

    def next(self, patience=PATIENCE):
        return self.queue.get(timeout=patience)

    def all(self):
        return [self.queue.get() for _ in range(self.queue.qsize())]

    def until(self, condition):
        """The first line that meets a condition, which must come."""
        deadline = time.monotonic() + PATIENCE
        while not condition(line := self.next(max(deadline - time.monotonic(), 0))):
            pass
        return line


class NoticeTest(ProcessTest):
    def properties(self):
        done = self.run_program("busctl", "--user", "--json=short", "call", NAME, PATH,
                                "org.freedesktop.DBus.Properties", "GetAll", "s", SENSORS)
        return {name: value["data"] for name, value in json.loads(done.stdout)["data"][0].items()}

    def client(self):
        client = Client(self.environment["DBUS_SESSION_BUS_ADDRESS"])
        self.addCleanup(client.close)
        return client

    def monitor(self):
        monitor = self.start("gdbus", "monitor", "--session", "--dest", NAME, "--object-path", PATH,
                             stdout=subprocess.PIPE)
        lines = Lines(monitor.stdout)
        lines.until(lambda line: "is owned by" in line)
        return lines

    def notices(self, lines):
        """(LastRefresh, Asleep) of the notices until now."""
        self.client().ask(RELEASE)  # which the monitor's bus has passed on after them
        time.sleep(0.3)
        found = [line for line in lines.all() if "PropertiesChanged" in line]
        for line in found:
            self.assertRegex(line, r"PropertiesChanged \('org\.orv\.Sensors1', \{.*\}, @as \[\]\)")
            self.assertNotIn("TC0P", line)
        return [(int(re.search(r"'LastRefresh': <uint64 (\d+)>", line)[1]), "'Asleep': <true>" in line)
                for line in found]

    def watch(self, *arguments, **options):
        process = self.start(BIN / "orvctl", "watch", *arguments, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                             **options)
        process.lines, process.said = Lines(process.stdout), Lines(process.stderr)
        return process

    def test_times_lie_before_what_the_next_reply_holds(self):
        started = boot_time()
        self.start_helper(mac(bluetooth=report(70), watch={"watch-1": {"batteryLevel": 80}}))
        first = self.properties()
        self.assertEqual((first["Interval"], first["Asleep"]), (5_000_000, False))
        self.assertIn(first["Version"], self.orvctl("--version"))
        self.assertTrue(started * 1e6 <= first["LastRefresh"] <= boot_time() * 1e6)
        self.assertEqual(first["LastWatchFile"], 0)
        while not self.properties()["LastBluetoothReport"]:
            self.assertEqual(first["LastBluetoothReport"], 0)
            self.wake()
        self.assertEqual(self.levels()[next(iter(device(70)))], {"batteryLevel": 70})
        self.until(lambda: self.properties()["LastWatchFile"])
        self.assertIn("watch-1", self.levels())
        self.simulate("SetTemperature", "sd", "TC0P", "50")
        asked = boot_time() * 1e6
        self.wake()
        self.assertGreaterEqual(self.properties()["LastRefresh"], asked)
        self.assertEqual(self.temperatures()["TC0P"], 50)

    def test_notices_are_for_claims(self):
        self.start_helper(mac())
        lines = self.monitor()
        claimant, other = self.client(), self.client()
        self.assertEqual([reply.error for reply in other.ask(RELEASE, RELEASE)], [None, None])
        self.wake()
        self.assertEqual(self.notices(lines), [])
        claimant.ask(*[CLAIM] * 1000)
        other.ask(CLAIM)
        for method in "Wake", "Wake", "Sleep", "Wake":
            self.simulate(method)
        seen = self.notices(lines)
        refreshes = len({refresh for refresh, _ in seen})
        self.assertGreaterEqual(refreshes, 3)
        self.assertIn(len(seen) - refreshes, (2, 3))  # the ends of the sleep; two refreshes may have been told of late
        self.assertEqual([asleep for _, asleep in seen].count(True), 1)
        other.ask(RELEASE)
        claimant.ask(*[RELEASE] * 999)
        self.wake()
        self.assertTrue(self.notices(lines))
        claimant.ask(RELEASE)
        self.notices(lines)
        self.wake()
        self.assertEqual(self.notices(lines), [])
        other.ask(CLAIM, CLAIM)
        self.wake()
        self.assertTrue(self.notices(lines))
        other.close()  # a peer that dies while it claims
        self.notices(lines)
        self.wake()
        self.assertEqual(self.notices(lines), [])

    def test_every_format_survives_what_may_happen_to_the_service(self):
        self.start_helper(mac(bluetooth=report(70)))
        watches = {name: self.watch("--format", name) for name in FORMATS}
        for name, process in watches.items():
            process.lines.until(lambda line: "40" in line)
        schema = json.loads(SCHEMA.read_text())
        jsonschema.validate(json.loads(watches["jsonl"].lines.next()), schema)
        self.helper.send_signal(signal.SIGSTOP)
        waybar = watches["waybar"].lines
        stale = json.loads(waybar.until(lambda line: '"ok"' not in line))
        self.assertEqual(stale["class"], "stale")
        self.assertIn("40 °C", stale["text"])
        self.assertIn(" old)", watches["i3bar"].lines.until(lambda line: " old)" in line))
        for name in "jsonl", "csv":
            watches[name].lines.all()
        self.helper.send_signal(signal.SIGCONT)
        continued = time.monotonic()
        waybar.until(lambda line: '"class": "ok"' in line)
        self.assertLess(time.monotonic() - continued, INTERVAL + 2)
        for name in "jsonl", "csv":
            self.assertIn("40", watches[name].lines.next())
        self.helper.kill()
        self.helper.wait(PATIENCE)
        self.assertEqual(json.loads(waybar.until(lambda line: '"ok"' not in line))["class"], "off")
        self.assertIn('"off"', watches["i3bar"].lines.until(lambda line: "°C" not in line))
        for process in watches.values():
            process.said.until(lambda line: NAME in line)
        for name in "jsonl", "csv", "table":
            watches[name].lines.all()
        self.start_helper(mac(bluetooth=report(70)))
        for process in watches.values():
            process.lines.until(lambda line: "40" in line)
            self.assertEqual(process.said.all(), [])
        for number, process in zip((signal.SIGTERM, signal.SIGINT) * 3, watches.values()):
            process.send_signal(number)
            self.assertEqual(process.wait(PATIENCE), 0)

    def test_asleep_is_not_stale(self):
        self.start_helper(mac())
        process = self.watch("--format", "waybar")
        process.lines.next()
        self.simulate("Sleep")
        line = process.lines.until(lambda line: "asleep" in line)
        self.assertEqual(json.loads(line)["class"], "ok")
        self.assertIn("asleep, measured", self.orvctl("thermal"))
        self.wake()
        process.lines.until(lambda line: "asleep" not in line)

    def test_absent_sensor_is_an_empty_cell_until_it_returns(self):
        machine = mac()
        machine["smc"].append({"key": "TG0D", "type": "sp78", "bytes": ["2800", "8100", "2900"]})
        self.environment["LC_ALL"] = "de_DE.UTF-8"
        self.start_helper(machine)
        process = self.watch("--format", "csv", "--only", "GPU Die", "--only", "TC0P", "--only", "none")
        self.assertIn('"none"', process.said.next())
        text = process.lines.next() + process.lines.next()
        while len(text.splitlines()) < 7:
            self.wake()
            text += process.lines.next()
        rows = list(csv.reader(io.StringIO(text, newline=""), strict=True))
        self.assertEqual(rows[0], ["time", "TG0D GPU Die [celsius]", "TC0P CPU Proximity [celsius]", "none"])
        cells = [row[1] for row in rows[1:]]
        self.assertEqual(set(cells), {"", "40.0", "41.0"})
        self.assertEqual({tuple(row[2:]) for row in rows[1:]}, {("40.0", "")})
        self.assertEqual(process.said.all(), [])

    def test_watch_ends_with_its_reader(self):
        self.start_helper(mac())
        process = self.watch("--format", "jsonl")
        process.lines.next()
        self.helper.send_signal(signal.SIGSTOP)  # so that nothing is written
        reading, writing = os.pipe()
        waiting = self.start(BIN / "orvctl", "watch", "--format", "jsonl", stdout=writing, stderr=subprocess.DEVNULL)
        os.close(writing)
        os.close(reading)
        self.assertEqual(waiting.wait(PATIENCE), 0)
        self.helper.send_signal(signal.SIGCONT)
        head = self.run_program("sh", "-c", f"{BIN}/orvctl watch --format csv | head -n 1")
        self.assertRegex(head.stdout, r"\Atime,")
        self.assertEqual(head.stderr, "")

    def test_watch_waits_for_a_service(self):
        process = self.watch("--format", "i3bar")
        self.assertEqual([process.lines.next() for _ in range(3)][:2], ['{"version":1}\n', "[\n"])
        self.assertIn(NAME, process.said.next())
        self.start_helper(mac())
        self.assertEqual(json.loads(process.lines.next()[1:])[0]["instance"], "TC0P")
        done = self.run_program(BIN / "orvctl", "watch", "--simulate", "/nonexistent")
        self.assertEqual((done.returncode, done.stdout, len(done.stderr.splitlines())), (2, "", 1))
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nonexistent"
        self.refusal(1, BIN / "orvctl", "watch")

    def test_simulated_mac_is_watched_without_a_service(self):
        path = self.machine_file(mac(bluetooth=report(70), watch={"watch-1": {"batteryLevel": 80}}))
        ends = {signal.SIGTERM: 0, signal.SIGQUIT: -signal.SIGQUIT}
        watches = {number: self.watch("--format", "jsonl", "--simulate", path) for number in ends}
        for number, process in watches.items():
            first, second = json.loads(process.lines.next()), json.loads(process.lines.next())
            self.assertEqual((first["bluetooth"], second["thermal"]), ({}, first["thermal"]))
            self.assertEqual(second["bluetooth"], {**device(70), "watch-1": {"batteryLevel": 80}})
            process.send_signal(number)
            self.assertEqual(process.wait(PATIENCE), ends[number])
        self.assertEqual(list(self.temporary.iterdir()), [])

    def test_recording_is_watched_as_it_was(self):
        steps = [{"at": 2, "smc": {"TC0P": "2d00"}, "event": "wake"}, {"at": 3, "smc": {"TC0P": "3200"}},
                 {"at": 7, "smc": {"TC0P": "3c00"}, "event": "sleep"}, {"at": 3600, "event": "wake"}]
        path = self.machine_file("\n".join(map(json.dumps, [mac(), *steps])) + '\n{"at": 36')
        watches = {name: self.watch("--format", name, "--simulate", path) for name in ("jsonl", "waybar")}
        readings = [json.loads(watches["jsonl"].lines.next())["thermal"]["TC0P"]["value"] for _ in range(3)]
        self.assertEqual(readings, [40.0, 45.0, 50.0])
        line = json.loads(watches["waybar"].lines.until(lambda line: "asleep" in line))
        self.assertIn("50 °C", line["text"])
        for process in watches.values():
            self.assertIn("was cut off", process.said.next())
        self.assertEqual(watches["jsonl"].lines.all(), [])


if __name__ == "__main__":
    unittest.main()
