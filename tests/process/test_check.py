"""orvctl check, as a monitoring program calls it."""

import json
import pathlib
import re
import unittest

import jsonschema

from support import BIN, ProcessTest, mac

SCHEMAS = pathlib.Path(__file__).resolve().parents[2] / "packaging/schemas"
LINE = re.compile(r"ORV (OK|WARNING|CRITICAL|UNKNOWN) - ([^|\n]+?)(?: \| ([^|\n]+))?\n")
DATA = re.compile(r"'[^'=]+'=-?[0-9.]+(?:;[0-9.]*){0,4}")
STATES = ("OK", "WARNING", "CRITICAL", "UNKNOWN")


class CheckTest(ProcessTest):
    def check(self, *arguments, **environment):
        """The state, the text and the performance data of what a caller takes."""
        self.environment |= environment
        done = self.run_program(BIN / "orvctl", "check", *arguments)
        self.assertEqual(done.stderr, "")
        name, text, data = LINE.fullmatch(done.stdout).groups()
        self.assertEqual(STATES.index(name), done.returncode)
        for item in (data or "").split():
            self.assertRegex(item, rf"\A{DATA.pattern}\Z")
        return done.returncode, text, data

    def test_service_is_checked_against_what_was_saved(self):
        baseline = self.folder / "baseline.json"
        self.start_helper(mac())
        status, text, data = self.check("--save", baseline, LC_ALL="de_DE.UTF-8")
        self.assertEqual((status, data), (0, "'F0Ac'=1200;;;1000;5000 'TA0P'=30.5 'TC0P'=40"))
        self.assertIn("saved into", text)
        jsonschema.validate(json.loads(baseline.read_text()), json.loads((SCHEMAS / "orv.baseline-1.json").read_text()))
        self.assertEqual(self.check("--expect", baseline, "--crit", "TC0P=40")[0], 0)
        self.assertEqual(self.check("--expect", baseline, "--warn", "CPU Proximity=39.5", "--crit", "TC0P=90")[::2],
                         (1, "'F0Ac'=1200;;;1000;5000 'TA0P'=30.5 'TC0P'=40;39.5;90"))
        self.simulate("SetTemperature", "sd", "TA0P", "5")
        self.simulate("SetFanSpeed", "sd", "F0Ac", "900")
        self.until(lambda: self.check("--expect", baseline)[0] == 2)
        status, text, _ = self.check("--expect", baseline)
        self.assertEqual((status, text), (2, "TA0P (Ambient 1) vanished, see: orvctl explain TA0P; "
                                             "F0Ac (Left Side) 900 rpm is below its minimum of 1000"))
        self.helper.kill()
        self.helper.wait()
        self.assertEqual(self.check("--expect", baseline)[0], 3)

    def test_what_cannot_be_used_is_unknown(self):
        machine = self.machine_file(mac())
        baseline = self.folder / "baseline.json"
        self.assertEqual(self.check("--simulate", machine, "--save", baseline)[0], 0)
        whole = baseline.read_text()
        for content, why in ((whole[:-20], "cut off"), ("", "cut off"), (whole.replace("/1", "/2"), "later version"),
                             (whole.replace("baseline", "reading"), "no baseline"), ("[]", "no baseline"),
                             ('{"schema": "orv.baseline/1"}', "no sensors"),
                             ('{"schema": "orv.baseline/1", "sensors": {"TC0P": 1}}', "no title"),
                             ("[" * 2_000_000, "too large")):
            with self.subTest(why=why):
                baseline.write_text(content)
                status, text, _ = self.check("--simulate", machine, "--expect", baseline)
                self.assertEqual(status, 3)
                self.assertIn(why, text)
        for arguments in (("--expect", self.folder / "none"), ("--expect", self.folder), ("--warn", "Nobody=5"),
                          ("--warn", "TC0P=5,5"), ("--crit", "TC0P"), ("--crit", "=5"), ("--warn",), ("--such",), ("more",),
                          ("--expect", "a", "--save", "b"), ("--save", "/nonexistent/file"), ("--at", "5"),
                          ("--warn", "TC0P=1|2\n3")):
            with self.subTest(arguments=arguments):
                simulated = () if arguments == ("--at", "5") else ("--simulate", machine)
                self.assertEqual(self.check(*simulated, *arguments)[0], 3)
        self.assertEqual(self.check("--simulate", "/nonexistent")[0], 3)
        self.assertEqual(self.run_program("sh", "-c", f"'{BIN}/orvctl' check --simulate '{machine}' >/dev/full").returncode, 3)


if __name__ == "__main__":
    unittest.main()
