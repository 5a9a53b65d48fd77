"""What stops the helper, and what it leaves behind."""

import json
import os
import pathlib
import signal
import socket
import subprocess
import time
import unittest

from support import BIN, HELPER, NAME, PATIENCE, REQUESTS, SIMULATION, ProcessTest, mac

UNNAMED = pathlib.Path(os.environ["ORV_UNNAMED"])
WATCH = {"watch-1": {"batteryLevel": 80}}


def with_row(**row):
    return mac(smc=[{"key": "TA0P", "type": "sp78", "bytes": "2800"}, {"key": "TC0P", **row}])


# What the file holds, and the member that the line names.
UNUSABLE = (
    ('{"sysctl": {}', ""),
    ("[]", ""),
    ("{}", "sysctl"),
    ('{"sysctl": {}, "sysctl": {}}', "sysctl"),
    (mac(fans=[]), "fans"),
    (mac(hid=[{}, {"temperature": "40"}]), "hid[1].temperature"),
    (with_row(key="TC0PX"), "smc[1].key"),
    (with_row(key="TA0P"), "smc[1].key"),
    (with_row(bytes="280"), "smc[1].bytes"),
    (with_row(bytes=["28", "00" * 33]), "smc[1].bytes[1]"),
)


class FaultTest(ProcessTest):
    def test_unusable_machine_file_is_named_with_its_fault(self):
        for content, fault in UNUSABLE:
            with self.subTest(content=content):
                path = self.machine_file(content)
                for command in (HELPER,), (BIN / "orvctl", "thermal"):
                    line = self.refusal(2, *command, "--simulate", path)
                    self.assertIn(f"{path}: ", line)
                    self.assertIn(fault, line.removeprefix(f"{command[0].name}: {path}: "))
        self.assertEqual(list(self.temporary.iterdir()), [])

    def test_unreadable_file_and_bad_usage(self):
        for path, fault in ((self.folder / "missing", "No such file"), (self.folder, "Is a directory")):
            self.assertRegex(self.refusal(2, HELPER, "--simulate", path), f": {path}: {fault}")
            self.assertRegex(self.refusal(2, BIN / "orvctl", "thermal", "--simulate", path), f": {path}: {fault}")
        for arguments, fault in ((("--simulate",), "nothing follows --simulate"), (("--help=x",), "no such option: --help=x"),
                                 (("--from=3", "-xh"), "no such option: -xh"), (("x", "--bad"), "no such option: --bad"),
                                 (("x", "y"), "unexpected argument: x"), (("--", "-h"), "unexpected argument: -h")):
            with self.subTest(arguments=arguments):
                line = f"orv-smc-helper: {fault}; see orv-smc-helper --help\n"
                self.assertEqual(self.refusal(2, HELPER, *arguments), line)

    def test_without_session_bus(self):
        machine = self.machine_file(mac(watch=WATCH))
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nonexistent"
        self.refusal(1, HELPER, "--simulate", machine)
        del self.environment["DBUS_SESSION_BUS_ADDRESS"]
        self.environment.pop("XDG_RUNTIME_DIR", None)
        self.refusal(1, HELPER)
        self.refusal(1, HELPER, "--simulate", machine)
        self.assertEqual(list(self.temporary.iterdir()), [])

    def test_second_helper_leaves_the_first_alone(self):
        self.start_helper(mac())
        line = self.refusal(1, HELPER, "--simulate", self.machine_file(mac(watch=WATCH)))
        self.assertIn(NAME, line)
        self.assertEqual(self.temperatures()["TC0P"], 40.0)
        self.assertEqual(list(self.temporary.iterdir()), [])

    def test_machine_without_a_model_is_fatal(self):
        machine = self.machine_file(mac(sysctl={}))
        for command in (HELPER,), (BIN / "orvctl", "thermal"):
            self.assertIn("fatal", self.refusal(-signal.SIGABRT, *command, "--simulate", machine))

    def container(self):
        return list(self.temporary.iterdir())

    def test_bus_that_goes_away_ends_a_helper_even_while_it_refreshes(self):
        self.start_helper(mac(watch=WATCH, exchangeDelay=50))
        self.assertEqual(len(self.container()), 1)
        self.start(*self.call_command(SIMULATION, "Wake"), stderr=subprocess.DEVNULL)
        self.temperatures()
        self.bus.kill()
        status, complaints = self.end_helper()
        self.assertEqual((status, complaints.count("\n"), self.container()), (1, 1, []))

    def test_container_goes_with_a_later_fatal_stop(self):
        machine = mac(watch=WATCH)
        next(row for row in machine["smc"] if row["key"] == "F0Ac").update(type="flt ", bytes=["00009644", "0000c07f"])
        self.start_helper(machine)
        self.assertEqual(len(self.container()), 1)
        self.start(*self.call_command(SIMULATION, "Wake"), stderr=subprocess.DEVNULL)
        status, complaints = self.end_helper()
        self.assertEqual((status, self.container()), (-signal.SIGABRT, []))
        self.assertEqual(complaints, "orv: fatal error: a fan speed is out of range\n")

    def test_container_goes_with_the_process(self):
        for how in signal.SIGTERM, signal.SIGINT, signal.SIGHUP, signal.SIGQUIT:
            with self.subTest(how=how):
                self.start_helper(mac(watch=WATCH))
                self.assertEqual(len(self.container()), 1)
                self.assertEqual(self.end_helper(how), (-how, ""))
                self.assertEqual(self.container(), [])

    def test_signal_during_the_first_refresh_is_not_kept_waiting(self):
        self.launch_helper(HELPER, "--simulate", self.machine_file(mac(watch=WATCH, exchangeDelay=60_000)))
        self.until(self.connection)
        self.assertEqual(self.end_helper(signal.SIGTERM), (-signal.SIGTERM, ""))
        self.assertEqual(self.container(), [])

    def test_signal_that_was_ignored_at_the_start_stays_ignored(self):
        machine = self.machine_file(mac(watch=WATCH))
        self.launch_helper("nohup", HELPER, "--simulate", machine)
        self.until(lambda: self.connection() and self.container())
        self.helper.send_signal(signal.SIGHUP)
        self.assertEqual(self.temperatures()["TC0P"], 40.0)

    def test_bus_that_accepts_and_stays_silent_keeps_nobody_waiting(self):
        listener = socket.socket(socket.AF_UNIX)
        self.addCleanup(listener.close)
        listener.bind(f"{self.folder}/silent")
        listener.listen()
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={self.folder}/silent".replace(" ", "%20")
        simulation = ("--simulate", self.machine_file(mac()))
        commands = (HELPER,), (HELPER, *simulation), (BIN / "orvctl", "thermal")
        started = time.monotonic()
        waiting = [self.start(*command, stderr=subprocess.PIPE) for command in commands]
        self.launch_helper(HELPER, *simulation)
        self.until(self.helper_rests)
        self.assertEqual(self.end_helper(signal.SIGINT), (-signal.SIGINT, ""))
        self.assertLess(time.monotonic() - started, 8)
        for process in waiting:
            self.assertRegex(process.communicate(timeout=PATIENCE)[1], r"\A[^\n]+\n\Z")
            self.assertEqual(process.returncode, 1)
        self.assertLess(time.monotonic() - started, 15)

    # The helper without a bundle identifier is found by its process.
    def connection(self):
        return [name for name in self.ask_bus("ListNames") if name.startswith(":") and
                self.ask_bus("GetConnectionUnixProcessID", "s", name) == self.helper.pid]

    def ask_bus(self, method, *arguments):
        done = self.run_program("busctl", "--user", "--json=short", "call", "org.freedesktop.DBus",
                                "/org/freedesktop/DBus", "org.freedesktop.DBus", method, *arguments)
        return json.loads(done.stdout)["data"][0] if done.returncode == 0 else None  # whoever asked last is gone

    def test_helper_without_bundle_identifier_claims_no_name(self):
        self.launch_helper(UNNAMED, "--simulate", self.machine_file(mac()))
        self.until(self.connection)
        unique, = self.connection()
        call = ("busctl", "--user", "--json=short", "call", unique, "/", REQUESTS, "getModelDatawithReply")
        self.until(lambda: '"CPU Proximity"' in self.run_program(*call).stdout)
        self.assertEqual(self.connection(), [unique])


if __name__ == "__main__":
    unittest.main()
