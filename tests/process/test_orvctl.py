"""The command-line client."""

import json
import os
import pty
import re
import subprocess
import time
import unittest

from support import BIN, HELPER, MACHINES, NAME, PATIENCE, ProcessTest, mac, needs_a_terminal, read_to_the_end, report

ESCAPE = "\x1b"


class OrvctlTest(ProcessTest):
    def on_a_terminal(self, *arguments):
        controller, terminal = pty.openpty()
        process = self.start(BIN / "orvctl", *arguments, stdout=terminal)
        os.close(terminal)
        shown = read_to_the_end(controller)
        self.assertEqual(process.wait(), 0)
        return shown.decode()

    def test_json_is_exact(self):
        machine = self.machine_file(mac(bluetooth=report(80), watch='{"b": {"z": 1.0, "e": 1e-7, "a": [true, {}], '
                                        '"big": 1e300, "t": "\u00fc\\u0001\\"", "n": null}, "a": {}}'))
        temperature = '"type": "temperature", "unit": "celcius", "value": '
        fan = '{"maxvalue": 5000, "minvalue": 1000, "title": "Left Side", "type": "fans", "unit": "rpm", "value": 1200}'
        self.assertEqual(self.orvctl("thermal", "--json", "--simulate", machine),
                         f'{{"F0Ac": {fan}, "TA0P": {{"title": "Ambient 1", {temperature}30.5}}, '
                         f'"TB0T": {{"title": "Battery", {temperature}1e999}}, '
                         f'"TC0P": {{"title": "CPU Proximity", {temperature}40.0}}}}\n')
        self.assertEqual(self.orvctl("bluetooth", "--json", "--simulate", machine),
                         '{"a": {}, "aa-bb-cc-dd-ee-01": {"batteryLevel": 80}, "b": {"a": [true, {}], '
                         '"big": 1e+300, "e": 1e-07, "t": "\u00fc\\u0001\\"", "z": 1.0}}\n')
        self.assertEqual(list(self.temporary.iterdir()), [])

    def test_tables_of_the_shipped_machines_fit_a_terminal(self):
        machines = sorted(MACHINES.glob("*.json"))
        self.assertGreater(len(machines), 5)
        for machine in machines:
            for request in "thermal", "bluetooth":
                with self.subTest(machine=machine.stem, request=request):
                    table = self.orvctl(request, "--simulate", machine)
                    self.assertNotIn(ESCAPE, table)
                    self.assertLessEqual(max(map(len, table.splitlines())), 80)
                    reply = json.loads(self.orvctl(request, "--json", "--simulate", machine))
                    self.assertLessEqual({key for key in reply if key not in table}, set())

    @needs_a_terminal
    def test_colour_is_for_terminals_that_want_it(self):
        machine = self.machine_file(mac())
        self.assertIn(ESCAPE, self.on_a_terminal("thermal", "--simulate", machine))
        self.assertNotIn(ESCAPE, self.on_a_terminal("thermal", "--json", "--simulate", machine))
        self.environment["NO_COLOR"] = "1"
        self.assertNotIn(ESCAPE, self.on_a_terminal("thermal", "--simulate", machine))

    def test_status_tells_usage_from_service(self):
        self.assertRegex(self.orvctl("--version"), r"\Aorvctl \d+\.\d+\.\d+\n\Z")
        self.assertIn("thermal", self.orvctl("--help"))
        self.assertIn("--simulate", self.orvctl("thermal", "--help"))
        for arguments, further in (((), "no command; see orvctl --help"), (("fans",), '"fans" is no command; see orvctl --help'),
                                   (("thermal", "--xml"), "--xml; see orvctl thermal --help"),
                                   (("thermal", "bluetooth"), "bluetooth; see orvctl thermal --help"),
                                   (("thermal", "--simulate"), "FILE missing; see orvctl thermal --help")):
            with self.subTest(arguments=arguments):
                self.assertIn(further, self.refusal(2, BIN / "orvctl", *arguments))
        self.refusal(1, BIN / "orvctl", "thermal")
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nonexistent"
        self.refusal(1, BIN / "orvctl", "bluetooth")

    def test_help_fits_a_terminal_and_shows_an_example(self):
        commands = re.findall(r"^  ([a-z]+) ", self.orvctl("--help").partition("Subcommands:")[2], re.MULTILINE)
        self.assertGreater(len(commands), 5)
        for command in (BIN / "orvctl",), (HELPER,), *((BIN / "orvctl", name) for name in commands):
            with self.subTest(command=command):
                text = self.run_program(*command, "--help").stdout
                self.assertLessEqual(len(text.splitlines()), 24)
                self.assertLessEqual(max(map(len, text.splitlines())), 80)
                self.assertRegex(text, f"(?m)^Example: {' '.join((command[0].name, *command[1:]))}")
                example, = re.findall("^Example: (.*)", text, re.MULTILINE)
                options, known = (set(re.findall(r"--[a-z]+", part)) for part in (example, text.replace(example, "")))
                self.assertEqual(options - known, set())

    def test_what_cannot_be_written_is_said(self):
        for arguments in ("thermal", "--simulate", self.machine_file(mac())), ("--help",), ("--version",):
            with open("/dev/full", "w") as full, self.subTest(arguments=arguments):
                done = subprocess.run([BIN / "orvctl", *arguments], stdout=full, stderr=subprocess.PIPE, text=True,
                                      timeout=PATIENCE)
                self.assertEqual((done.returncode, done.stderr), (1, "orvctl: cannot write: No space left on device\n"))

    def refused_start(self, line, *options):
        """What is said of a service that cannot be started."""
        (self.folder / f"{NAME}.service").write_text(f"[D-BUS Service]\nName={NAME}\n{line}\n")
        self.start_limited_bus(*options)
        if options:
            self.start_systemd()
        started = time.monotonic()
        text = self.refusal(1, BIN / "orvctl", "thermal")
        self.assertLess(time.monotonic() - started, 5)  # two seconds where nobody else is at work
        return text

    def start_systemd(self):
        path, mock = "/org/freedesktop/systemd1/unit/orv_2dsmc_2dhelper_2eservice", "org.freedesktop.DBus.Mock"
        self.start("/usr/bin/python3", "-m", "dbusmock", "org.freedesktop.systemd1", path,
                   "org.freedesktop.systemd1.Service", stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.run_program("gdbus", "wait", "--session", f"--timeout={PATIENCE}", "org.freedesktop.systemd1")
        for interface, *properties in (("Unit", "2", "ActiveState", "s", "failed", "SubState", "s", "failed"),
                                       ("Service", "2", "Result", "s", "exit-code", "ExecMainStatus", "i", "217")):
            done = self.run_program("busctl", "--user", "call", "org.freedesktop.systemd1", path, mock, "AddProperties",
                                    "sa{sv}", f"org.freedesktop.systemd1.{interface}", *properties)
            self.assertEqual(done.stderr, "")

    def test_service_that_cannot_be_started_is_explained_soon(self):
        self.assertIn("exited with status 1", self.refused_start("Exec=/bin/false"))
        line = self.refused_start("Exec=/bin/false\nSystemdService=orv-smc-helper.service", "--systemd-activation")
        self.assertIn("orv-smc-helper.service failed (exit-code, status 217/USER)", line)
        self.assertIn("journalctl --user -u orv-smc-helper", line)
        self.assertIn("no-user-namespaces.conf", line)

    def test_session_without_a_bus_is_explained(self):
        for name in "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR":
            self.environment.pop(name, None)
        for command in (BIN / "orvctl", "thermal"), (HELPER,):
            self.assertIn("neither DBUS_SESSION_BUS_ADDRESS nor XDG_RUNTIME_DIR is set", self.refusal(1, *command))


if __name__ == "__main__":
    unittest.main()
