"""orvctl explain."""

import json
import pathlib
import time
import unittest

import jsonschema

from support import BIN, MACHINES, ProcessTest, mac, report

SCHEMA = json.loads((pathlib.Path(__file__).resolve().parents[2] / "packaging/schemas/orv.explain-1.json").read_text())


class ExplainTest(ProcessTest):
    def explain(self, machine, *arguments):
        document = json.loads(self.orvctl("explain", "--json", "--simulate", machine, *arguments))
        jsonschema.validate(document, SCHEMA)
        return document

    def asked(self, machine, *arguments):
        done = self.run_program(BIN / "orvctl", "explain", "--simulate", machine, *arguments)
        self.assertEqual(done.stderr, "")
        return done.returncode, done.stdout

    def test_what_is_shown_is_the_reply(self):
        for machine in sorted(MACHINES.glob("*.json")):
            with self.subTest(machine=machine.stem):
                document = self.explain(machine)
                thermal = json.loads(self.orvctl("thermal", "--json", "--simulate", machine))
                shown = {row["key"]: row for row in document["sensors"] if row["verdict"] == "shown"}
                self.assertEqual({key: (row["title"], row["value"]) for key, row in shown.items()},
                                 {key: (entry["title"], entry["value"]) for key, entry in thermal.items()})
                bluetooth = json.loads(self.orvctl("bluetooth", "--json", "--simulate", machine))
                parts = json.loads(machine.read_text()).get("bluetooth", {}).get("SPBluetoothDataType", [])
                self.assertEqual(sorted((row["part"], row["list"], row["element"]) for row in document["bluetooth"]),
                                 sorted((place, name, element) for place, part in enumerate(parts)
                                        for name, devices in part.items() if isinstance(devices, list)
                                        for element in range(len(devices))))
                entries = document["bluetooth"] + document["watch"]
                self.assertEqual({row["key"] for row in entries if row["verdict"] == "shown"}, set(bluetooth))
                text = self.orvctl("explain", "--simulate", machine)
                self.assertLessEqual(max(map(len, text.splitlines())), 80)
                self.assertEqual(self.explain(machine, "--missing")["sensors"],
                                 [row for row in document["sensors"] if row["verdict"] != "shown"])
        self.assertEqual(list(self.temporary.iterdir()), [])

    def test_a_question_is_answered_whether_there_is_something_or_not(self):
        machine = self.machine_file(mac(bluetooth={"SPBluetoothDataType": [{"device_not_connected": [
            {"My Mouse": {"device_address": "AA:BB:CC:DD:EE:02", "device_minorType": "Pointer"}}]}]}))
        for what, words in {
            "TC0P": "shown",
            "why does my mouse show no battery": "My Mouse",
            "cpu prox": "TC0P",
            "TG0D": "this Mac does not have it",
            "Tg05": "Macs with Apple silicon later than the first M1 models",
            "gpu": "none listed",
            "fans": "Left Side",
            "mouse": "not among the connected devices",
            "aa:bb:cc:dd:ee:02": "with a level",
            "pointer": "My Mouse",
            "watch": "no companion application",
            "#KEY": "only keys that begin with T",
        }.items():
            with self.subTest(what=what):
                status, text = self.asked(machine, what)
                self.assertEqual(status, 0, text)
                self.assertIn(words, " ".join(text.split()))
        status, text = self.asked(machine, "TC0P", "trackball")
        self.assertEqual(status, 1)
        self.assertIn("trackball: no listed key", text)
        self.assertIn("My Mouse", text)

    def test_numbers_that_json_lacks_are_null_with_a_reason(self):
        rows = [{"key": "TB0T", "type": "flt ", "bytes": "0000807f"}, {"key": "TB1T", "type": "flt ", "bytes": "0000c07f"}]
        sensors = self.explain(self.machine_file(mac(smc=rows)), "TB0T", "TB1T")["sensors"]
        self.assertEqual([(row["verdict"], row["value"], row["valueReason"]) for row in sensors],
                         [("shown", None, "infinite"), ("below-threshold", None, "not a number")])

    def test_many_keys_are_explained_in_seconds(self):
        keys = [f"T{a}{b}{c}" for a in "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmno" for b in "0123456789abcdefghijklmnopqrstuvwxyzABCD"
                for c in "0123456789abcdefghijklmnopqrstuvwxyzABCD"][:65000]
        machine = self.machine_file(mac(smc=[{"key": key, "type": "sp78", "bytes": "2f80"} for key in keys]))
        started = time.monotonic()
        self.assertEqual(self.explain(machine)["machine"]["listedTemperatures"], 65000)
        self.assertLess(time.monotonic() - started, 90)  # of an unoptimised build on a busy machine

    def test_what_cannot_be_done_is_refused_in_one_line(self):
        machine = self.machine_file(mac())
        self.refusal(2, BIN / "orvctl", "explain", "--missing", "--shown", "--simulate", machine)
        self.refusal(2, BIN / "orvctl", "explain", "--simulate", "/nonexistent")
        self.refusal(2, BIN / "orvctl", "explain", "--xml")


if __name__ == "__main__":
    unittest.main()
