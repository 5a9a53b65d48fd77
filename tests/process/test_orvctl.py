"""The command-line client."""

import json
import os
import pty
import unittest

from support import BIN, MACHINES, ProcessTest, mac, needs_a_terminal, report

ESCAPE = "\x1b"


class OrvctlTest(ProcessTest):
    def on_a_terminal(self, *arguments):
        controller, terminal = pty.openpty()
        process = self.start(BIN / "orvctl", *arguments, stdout=terminal)
        os.close(terminal)
        shown = b""
        try:
            while piece := os.read(controller, 4096):
                shown += piece
        except OSError:  # how the end of a terminal reads
            pass
        os.close(controller)
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
        for arguments in ((), ("fans",), ("thermal", "--xml"), ("thermal", "bluetooth"), ("thermal", "--simulate")):
            with self.subTest(arguments=arguments):
                self.refusal(2, BIN / "orvctl", *arguments)
        self.refusal(1, BIN / "orvctl", "thermal")
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nonexistent"
        self.refusal(1, BIN / "orvctl", "bluetooth")


if __name__ == "__main__":
    unittest.main()
