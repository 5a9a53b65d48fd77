"""Clients that ask for very much, do not listen, or talk nonsense."""

import itertools
import json
import os
import select
import signal
import time
import unittest

from support import IS_SANITIZED, MACHINES, NAME, PATIENCE, REQUESTS, SIMULATION, ProcessTest, device, mac, report
from wire import (BLUETOOTH, BUS, CALL, ERROR, HELPER_OBJECT, RETURN, SIGNAL, THERMAL, Client, message, named_number,
                  readings, text)


def large_mac():
    """With a reply of 4 KB, which stays the same."""
    machine = json.loads((MACHINES / "imac-2017-intel.json").read_text())
    for row in machine["smc"]:
        row["bytes"] = row["bytes"][0] if isinstance(row["bytes"], list) else row["bytes"]
    return machine


def simulation(method, arguments=b"", signature=None):
    return message(CALL, arguments, **HELPER_OBJECT, interface=SIMULATION, member=method,
                   signature=signature or ("sd" if arguments else ""))


def request(arguments=b"", signature="", **fields):
    fields = {**HELPER_OBJECT, "interface": REQUESTS, "member": "getModelDatawithReply", **fields}
    return message(CALL, arguments, **fields, signature=signature)


REFUSALS = (
    ("UnknownMethod", request(member="Nothing")),
    ("UnknownMethod", request(interface=SIMULATION)),
    ("UnknownObject", request(path="/nothing")),
    ("UnknownInterface", message(CALL, text("x"), **HELPER_OBJECT, interface="org.freedesktop.DBus.Properties",
                                 member="GetAll", signature="s")),
    ("InvalidArgs", request(text("x"), "s")),
    ("InvalidArgs", simulation("Wake", text("x"), "s")),
    ("InvalidArgs", simulation("SetTemperature")),
    ("InvalidArgs", simulation("SetTemperature", text("TC0P"), "s")),
    ("InvalidArgs", simulation("SetTemperature", named_number("TC0P", 40.0), "sx")),
    ("InvalidArgs", simulation("SetTemperature", named_number("TC9P", 40.0))),
    ("InvalidArgs", simulation("SetTemperature", named_number("", 40.0))),
    ("InvalidArgs", simulation("SetFanSpeed", named_number("TC0P", 40.0))),
    ("InvalidArgs", simulation("SetFanSpeed", named_number("F0Ac", float("inf")))),
    ("InvalidArgs", simulation("SetFanSpeed", named_number("F0Ac" * 1000, 40.0))),
)
# Nobody asked for these replies, and nobody whom the helper listens to sends these signals.
PASSED_OVER = (
    message(RETURN, destination=NAME, reply_serial=1),
    message(ERROR, destination=NAME, reply_serial=2, error="org.orv.Error"),
    message(SIGNAL, **{**BUS, "destination": NAME}, member="NameOwnerChanged"),
    message(SIGNAL, **{**BUS, "destination": NAME}, member="NameLost"),
)
DISCONNECTED = message(SIGNAL, destination=NAME, path="/org/freedesktop/DBus/Local",
                       interface="org.freedesktop.DBus.Local", member="Disconnected")

class LoadTest(ProcessTest):
    def setUp(self):
        super().setUp()
        # The sanitizer otherwise keeps what was freed, to notice its use.
        options = os.environ.get("ASAN_OPTIONS", "")
        self.environment["ASAN_OPTIONS"] = f"{options}:quarantine_size_mb=1:thread_local_quarantine_size_kb=64"

    def client(self, **options):
        client = Client(self.environment["DBUS_SESSION_BUS_ADDRESS"], **options)
        self.addCleanup(client.close)
        return client

    def memory(self, name="VmRSS"):
        with open(f"/proc/{self.helper.pid}/status", encoding="utf-8") as status:
            return next(int(line.split()[1]) for line in status if line.startswith(name)) * 1024

    # Whatever the load, this comes once nothing is left to do; a spin takes the half second whole.
    def helper_uses_little_for_half_a_second(self):
        used = self.processor_seconds()
        time.sleep(0.5)
        return self.processor_seconds() - used < 0.1

    def test_client_that_does_not_read_costs_the_helper_no_memory(self):
        self.start_helper(large_mac())
        silent, other = self.client(receive_buffer=4096), self.client()
        expected = other.ask(*[THERMAL] * 100)[0].body
        before = self.memory()
        asked = [serial for _ in range(20) for serial in silent.send(*[THERMAL] * 500)]
        for _ in range(20):
            self.assertEqual(other.ask(THERMAL)[0].body, expected)
        self.assertEqual({reply.body for reply in silent.replies(asked)}, {expected})
        self.assertLess(self.memory("VmHWM") - before, len(asked) * len(expected) / 8)

    def test_bus_that_does_not_read_is_waited_for(self):
        self.start_helper(large_mac())
        client = self.client()
        for how in signal.SIGCONT, signal.SIGTERM:
            asked = client.send(*[THERMAL] * 3000)
            self.bus.send_signal(signal.SIGSTOP)
            self.until(self.helper_rests)
            if how == signal.SIGTERM:
                self.assertEqual(self.end_helper(how), (-how, ""))
            self.bus.send_signal(signal.SIGCONT)
            if how == signal.SIGCONT:
                self.assertEqual(len({reply.body for reply in client.replies(asked)}), 1)

    def test_bus_that_takes_part_of_a_large_reply_and_stops_is_waited_for_at_rest(self):
        """It takes no more from the helper while this much of its replies waits for clients."""
        self.start_limited_bus(max_incoming_bytes=3_000_000)
        self.start_helper(mac(watch={"watch-1": {f"{number:05}": number for number in range(50_000)}}))
        client, other = self.client(receive_buffer=4096), self.client()
        self.until(lambda: self.wake() or len(other.ask(BLUETOOTH)[0].body) > 1_000_000)
        size, before = len(other.ask(BLUETOOTH)[0].body), self.memory()
        asked = client.send(*[BLUETOOTH] * 60)
        for read in range(0, 15, 5):
            client.replies(asked[:read][-5:])  # makes room for the next ones, part by part
            self.until(self.helper_uses_little_for_half_a_second)
            # A sanitizer keeps several times as much beside everything that is allocated; all replies together are 60.
            self.assertLess(self.memory("VmHWM") - before, (30 if IS_SANITIZED else 8) * size)
        client.close()
        self.assertIsNone(other.ask(THERMAL)[0].error)
        asked = other.send(*[BLUETOOTH] * 60)
        time.sleep(0.5)
        self.assertEqual(self.end_helper(signal.SIGTERM), (-signal.SIGTERM, ""))

    def test_two_hundred_clients_are_answered(self):
        self.start_helper(mac(bluetooth=report(70)))
        self.until(lambda: self.wake() or self.levels() == device(70))
        clients = [self.client() for _ in range(200)]
        asked = [client.send(*[THERMAL, BLUETOOTH] * 5) for client in clients]
        replies = [reply for client, serials in zip(clients, asked) for reply in client.replies(serials)]
        bodies = {reply.body for reply in replies[0::2]}, {reply.body for reply in replies[1::2]}
        self.assertEqual([len(each) for each in bodies], [1, 1])
        thermal, levels = (readings(each.pop()) for each in bodies)
        self.assertEqual({code: entry["value"] for code, entry in thermal.items()},
                         {"TC0P": 40.0, "TB0T": float("inf"), "TA0P": 30.5, "F0Ac": 1200})
        self.assertEqual(levels, device(70))

    def test_nonsense_is_refused_or_passed_over(self):
        self.start_helper(mac(bluetooth=report(70)))
        self.until(lambda: self.wake() or self.levels() == device(70))
        client = self.client()
        good = [reply.body for reply in client.ask(THERMAL, BLUETOOTH)]
        expected, calls = zip(*REFUSALS)
        calls *= 50
        early = 0
        for number in range(100_000 // (len(calls) + len(PASSED_OVER))):
            early = early or number >= 30 and self.memory()
            client.send(*PASSED_OVER)
            errors = tuple(reply.error.rpartition(".")[2] for reply in client.ask(*calls))
            self.assertEqual(errors, expected * 50)
        self.assertLess(self.memory() - early, 8 << 20)
        huge, = client.ask(simulation("SetTemperature", named_number("T" * 10_000_000, 40.0)))
        self.assertIn("InvalidArgs", huge.error)
        with self.assertRaises(OSError):
            self.client().ask(DISCONNECTED)
        self.wake()
        self.assertEqual([reply.body for reply in client.ask(THERMAL, BLUETOOTH)], good)

    def test_changes_that_a_slow_refresh_keeps_waiting_are_limited(self):
        self.start_helper(mac(exchangeDelay=150))  # a refresh takes two seconds
        client = self.client()
        change = simulation("SetTemperature", named_number("TC0P", 60.0))
        replies = client.ask(simulation("Wake"), *[change] * 3000)
        refused = [reply.error for reply in replies if reply.error]
        self.assertEqual(set(refused), {"org.freedesktop.DBus.Error.LimitsExceeded"})
        self.assertGreaterEqual(len(replies) - len(refused), 1000)
        self.assertIsNone(client.ask(change)[0].error)

    def test_clients_that_never_pause_see_whole_readings(self):
        self.start_helper(mac(watch={"watch-1": {"batteryLevel": 80}}))
        driver, clients = self.client(), [self.client() for _ in range(6)]
        seen, devices = set(), {}

        def look(body):
            if body in seen:
                return
            seen.add(body)
            reply = readings(body)
            if "F0Ac" in reply:
                values = [reply[key]["value"] for key in ("TC0P", "TA0P", "F0Ac")]
                self.assertEqual(values, [values[0], values[0], values[0] * 10])
            else:
                devices.update(reply)

        rounds = itertools.count()

        def play_round():
            number = 20 + next(rounds) % 80
            waiting = set(driver.send(
                simulation("Sleep"), simulation("SetTemperature", named_number("TC0P", number)),
                simulation("SetTemperature", named_number("TA0P", number)),
                simulation("SetFanSpeed", named_number("F0Ac", number * 10)),
                simulation("Wake"), simulation("ConnectBluetoothDevice"), simulation("ChangePairing")))
            while waiting:
                ready = select.select([driver, *clients], [], [], PATIENCE)[0]
                self.assertTrue(ready)
                for client in ready:
                    for reply in client.receive():
                        self.assertIsNone(reply.error)
                        if client is driver:
                            waiting.remove(reply.serial)
                        else:
                            look(reply.body)
                            client.send(THERMAL if reply.serial % 2 else BLUETOOTH)

        play_round()
        for client in clients:
            client.send(*[THERMAL, BLUETOOTH] * 4)
        for level in range(1, 11):
            self.machine_file(mac(bluetooth=report(level)))  # which the profiler reads
            for _ in range(100):
                play_round()
            self.until(lambda: play_round() or device(level).items() <= devices.items(), pause=0)


if __name__ == "__main__":
    unittest.main()
