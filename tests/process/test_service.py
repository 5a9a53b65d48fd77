"""What clients see of the running service."""

import json
import subprocess
import time
import unittest
import xml.etree.ElementTree

from support import NAME, PATH, PATIENCE, REQUESTS, SIMULATION, ProcessTest, mac, plain

STILL = {"TA0P": 30.5, "TB0T": None, "TC0P": 40.0}  # busctl writes null for infinity


class ServiceTest(ProcessTest):
    def gdbus(self, method, *arguments):
        return self.run_program("gdbus", "call", "--session", "--dest", NAME, "--object-path", PATH, "--method",
                                method, *arguments)

    def interfaces(self):
        done = self.run_program("gdbus", "introspect", "--session", "--xml", "--dest", NAME, "--object-path", PATH)
        node = xml.etree.ElementTree.fromstring(done.stdout)
        return {interface.get("name"): {
            method.get("name"): [(argument.get("direction"), argument.get("type")) for argument in method]
            for method in interface.findall("method")} for interface in node}

    def test_reply_types_follow_the_reading_kind(self):
        self.start_helper(mac())
        reply = self.ask("getModelDatawithReply")
        texts = {"title": "s", "type": "s", "unit": "s"}
        temperature = {**texts, "value": "d"}
        fan = {**texts, "value": "x", "minvalue": "x", "maxvalue": "x"}
        types = {code: {member: field["type"] for member, field in entry.items()} for code, entry in reply.items()}
        self.assertEqual(types, {"TA0P": temperature, "TB0T": temperature, "TC0P": temperature, "F0Ac": fan})
        self.assertEqual(plain(reply)["F0Ac"], {"title": "Left Side", "type": "fans", "unit": "rpm", "value": 1200,
                                                "minvalue": 1000, "maxvalue": 5000})
        text = self.gdbus(REQUESTS + ".getModelDatawithReply").stdout
        for part in "'value': <40.0>", "'value': <inf>", "'value': <int64 1200>", "'unit': <'celcius'>":
            self.assertIn(part, text)
        simulated = self.orvctl("thermal", "--json", "--simulate", self.folder / "machine.json")
        self.assertEqual(self.orvctl("thermal", "--json"), simulated)

    def test_object_names_its_interfaces(self):
        self.start_helper(mac())
        number = [("in", "s"), ("in", "d")]
        requests = dict.fromkeys(["getModelDatawithReply", "getBTDataWithReply"], [("out", "a{sa{sv}}")])
        interfaces = self.interfaces()
        self.assertEqual(interfaces[REQUESTS], requests)
        self.assertEqual(interfaces[SIMULATION], {
            "Sleep": [], "Wake": [], "ConnectBluetoothDevice": [], "ChangePairing": [],
            "SetTemperature": number, "SetFanSpeed": number})

    def test_without_simulation_this_computer_is_served(self):
        (self.folder / "root").mkdir()
        self.environment["ORV_ROOT"] = str(self.folder / "root")
        self.start_helper(None)
        self.assertEqual((self.ask("getModelDatawithReply"), self.levels()), ({}, {}))
        self.assertNotIn(SIMULATION, self.interfaces())

    def test_only_whole_readings_are_seen_however_slow_the_hardware(self):
        started = time.monotonic()
        self.start_helper(mac(exchangeDelay=100))
        self.assertEqual(self.temperatures(), STILL)  # as soon as the name is there
        self.assertGreater(time.monotonic() - started, 1.0)  # ten exchanges at the very least
        self.simulate("Sleep")
        self.simulate("SetTemperature", "sd", "TC0P", "60")
        self.simulate("SetTemperature", "sd", "TA0P", "50")
        wake = self.start(*self.call_command(SIMULATION, "Wake"))
        answered_meanwhile = 0
        while wake.poll() is None:
            clients = [self.start(*self.call_command(REQUESTS, "getModelDatawithReply"), stdout=subprocess.PIPE)
                       for _ in range(2)]
            for client in clients:
                reply = plain(json.loads(client.communicate(timeout=PATIENCE)[0]))[0]
                self.assertIn((reply["TC0P"]["value"], reply["TA0P"]["value"]), ((40.0, 30.5), (60.0, 50.0)))
            answered_meanwhile += wake.poll() is None
        self.assertGreater(answered_meanwhile, 0)
        self.assertEqual(self.temperatures(), {**STILL, "TC0P": 60.0, "TA0P": 50.0})

    def test_reading_is_refreshed_when_wake_has_answered_and_never_asleep(self):
        self.start_helper(mac())
        self.simulate("Sleep")
        self.simulate("SetTemperature", "sd", "TC0P", "41.3")
        self.simulate("SetFanSpeed", "sd", "F0Ac", "2345.6")
        time.sleep(5.5)  # a refresh that does not happen is no event
        self.assertEqual(self.temperatures(), STILL)
        self.wake()
        reply = plain(self.ask("getModelDatawithReply"))
        self.assertEqual((reply["TC0P"]["value"], reply["F0Ac"]["value"]), (41.30078125, 2346))  # what the types hold
        self.simulate("SetTemperature", "sd", "TC0P", "50")
        self.until(lambda: self.temperatures()["TC0P"] == 50.0)  # by the timer

    def test_impossible_readings_are_invalid_arguments(self):
        self.start_helper(mac())
        for method, key, number in (("SetTemperature", "TC9P", "40"), ("SetTemperature", "F0Ac", "40"),
                                    ("SetTemperature", "", "40"), ("SetTemperature", "TC0P", "nan"),
                                    ("SetFanSpeed", "TC0P", "40"), ("SetFanSpeed", "F0Ac", "inf")):
            with self.subTest(method=method, key=key, number=number):
                done = self.gdbus(f"{SIMULATION}.{method}", f"'{key}'", number)
                self.assertIn("org.freedesktop.DBus.Error.InvalidArgs", done.stderr)
        self.wake()
        self.assertEqual(self.temperatures(), STILL)


if __name__ == "__main__":
    unittest.main()
