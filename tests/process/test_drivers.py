"""The kernel's drivers as a tree of files."""

import json
import os
import signal
import subprocess
import unittest

from host import APPLESMC, HostTest
from support import BIN, PATIENCE


class SensorFilesTest(HostTest):
    def test_driver_is_read_without_privileges(self):
        self.write_intel(temp1_label="TC0P\n", temp1_input="47500\n", temp2_label="TB0T\n", temp2_input="30250\n",
                         temp3_label="TC1P\n", temp3_input="-127000\n", fan1_input="2157\n", fan1_min="2160\n",
                         fan1_max="6156\n", fan2_input="2002\n",
                         # Files do not follow the index: for whoever may write it they are no way to the keys.
                         key_count="2\n", key_at_index="0\n", key_at_index_name="TC0P\n", key_at_index_type="sp78\n",
                         key_at_index_data_length="2\n", key_at_index_data="\x50\x00")
        self.start_host()
        fan = {"type": "fans", "unit": "rpm"}
        self.assertEqual(self.temperatures(), {"TC0P": 47.5, "TB0T": 30.25})
        reply = self.thermal()
        self.assertEqual(reply["F0Ac"], {**fan, "title": "Left Side", "value": 2157, "minvalue": 2160, "maxvalue": 6156})
        self.assertEqual(reply["F1Ac"], {**fan, "title": "Right Side", "value": 2002, "minvalue": 0, "maxvalue": 0})
        self.write_intel(temp1_input="50000\n")
        self.until(lambda: self.temperatures() == {"TC0P": 50.0, "TB0T": 30.25})

    def test_what_keeps_sensors_away_is_said_first(self):
        bare = self.explain()
        self.assertEqual([each["id"] for each in bare["machine"]["obstacles"]], ["no-driver", "smc-closed"])
        self.write_intel(temp1_label="TC0P\n", temp1_input="47500\n", key_at_index="0\n")
        (self.root / APPLESMC / "key_at_index").chmod(0o444)
        document = self.explain()
        self.assertEqual([row["key"] for row in document["sensors"] if row["verdict"] == "shown"], ["TC0P"])
        obstacle, = document["machine"]["obstacles"]
        if os.geteuid() == 0 and not self.prefix:  # whom no mode stops
            self.assertEqual((obstacle["id"], obstacle["command"]), ("files-only", None))
        else:
            self.assertIn(obstacle["id"], ("no-group", "no-member", "member-later", "no-group-access"))
            self.assertRegex(obstacle["command"], "^sudo ")

    def test_driver_is_recorded(self):
        self.write_intel(temp1_label="TC0P\n", temp1_input="47500\n", temp2_label="TC1P\n", temp2_input="-127000\n",
                         fan1_input="2157\n", fan1_min="2160\n")
        orvctl = self.copy(BIN / "orvctl", "bin")
        process = self.start(orvctl, "record", "--for", "1h", "--every", "0.1s", "-o", "-", stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE)
        recorded = ""
        while not recorded.endswith("\n}\n"):
            recorded += (line := process.stdout.readline())
            self.assertTrue(line, recorded)
        self.write_intel(temp1_input="50000\n")
        step = process.stdout.readline()
        process.send_signal(signal.SIGINT)
        rest, said = process.communicate(timeout=PATIENCE)
        self.assertEqual((process.returncode, said.count("\n")), (0, 1), said)
        self.assertIn("4 keys with their values", said)
        path = self.machine_file(recorded + step + rest)
        shown = [{key: entry["value"] for key, entry in json.loads(line)["thermal"].items()}
                 for line in self.run_program(orvctl, "replay", path).stdout.splitlines()]
        self.assertEqual((shown[0], shown[-1]), ({"TC0P": 47.5, "F0Ac": 2157}, {"TC0P": 50.0, "F0Ac": 2157}))

    def explain(self):
        done = self.run_program(self.copy(BIN / "orvctl", "bin"), "explain", "--json")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return json.loads(done.stdout)

    def test_apple_silicon_is_read_by_its_labels(self):
        hwmon = "sys/class/hwmon/hwmon2"
        self.write({"proc/device-tree/model": "Apple MacBook Pro (14-inch, M3 Pro, 2023)\0", "proc/cpuinfo": "",
                    f"{hwmon}/name": "macsmc_hwmon\n", f"{hwmon}/temp1_label": "Battery Hotspot\n",
                    f"{hwmon}/temp1_input": "31125\n", f"{hwmon}/temp2_label": "Charge Regulator Temp\n",
                    f"{hwmon}/temp2_input": "40500\n", f"{hwmon}/temp3_label": "WiFi/BT Module Temp\n",
                    f"{hwmon}/temp3_input": "38250\n", f"{hwmon}/fan1_label": "Fan 1\n",
                    f"{hwmon}/fan1_input": "1300\n", f"{hwmon}/fan1_min": "1200\n", f"{hwmon}/fan1_max": "6800\n"})
        self.start_host()
        self.assertEqual(self.temperatures(), {"TB0T": 31.125, "TCHP": 40.5, "TW0P": 38.25})
        self.assertEqual(self.thermal()["F0Ac"]["value"], 1300)

    def test_driver_that_comes_late_is_taken_up(self):
        self.write_intel()
        self.start_host()
        self.assertEqual(self.thermal(), {})
        hwmon = "hwmon/hwmon3/"
        self.write_intel(**{hwmon + "temp1_label": "TC0P\n", hwmon + "temp1_input": "47500\n", hwmon + "fan1_input": "2157\n"})
        self.until(lambda: self.thermal().keys() == {"TC0P", "F0Ac"})

    def test_machine_that_says_nothing_of_itself_is_served(self):
        self.start_host()
        self.assertEqual((self.temperatures(), self.levels()), ({}, {}))


class SensorFilesAsNobodyTest(SensorFilesTest):
    prefix = ("setpriv", "--reuid=nobody", "--regid=nogroup", "--clear-groups") if os.geteuid() == 0 else ()


if __name__ == "__main__":
    unittest.main()
