"""Too few descriptors, and too little memory."""

import itertools
import os
import resource
import signal
import struct
import unittest

from support import HELPER, IS_SANITIZED, NAME, SIMULATION, ProcessTest, device, mac, report
from wire import BUS, CALL, HELPER_OBJECT, THERMAL, Client, message, named_number, text

WATCH = {"watch-1": {"batteryLevel": 80}}


class ShortageTest(ProcessTest):
    def setUp(self):
        super().setUp()
        self.bus_client = self.client()

    def client(self):
        client = Client(self.environment["DBUS_SESSION_BUS_ADDRESS"])
        self.addCleanup(client.close)
        return client

    def lower(self, limit, soft):
        """What the running helper may have; returns how to lift it again."""
        before = resource.prlimit(self.helper.pid, limit)
        resource.prlimit(self.helper.pid, limit, (soft, before[1]))
        return lambda: resource.prlimit(self.helper.pid, limit, before)

    def address_space(self):
        with open(f"/proc/{self.helper.pid}/statm", encoding="ascii") as numbers:
            return int(numbers.read().split()[0]) * resource.getpagesize()

    def is_served(self):
        reply, = self.bus_client.ask(message(CALL, text(NAME), **BUS, member="NameHasOwner", signature="s"))
        return struct.unpack("<I", reply.body)[0] == 1

    def start_limited(self, limit):
        """Whether it serves. Otherwise it has refused in one line."""
        self.until(lambda: not self.is_served(), pause=0.02)  # by the helper before this one
        self.launch_helper("prlimit", limit, HELPER, "--simulate", self.machine_file(mac(watch=WATCH)))
        self.until(lambda: self.helper.poll() is not None or self.is_served(), pause=0.02)
        is_served = self.helper.poll() is None
        status, complaints = self.end_helper(signal.SIGTERM if is_served else None)
        if IS_SANITIZED:
            return is_served  # a sanitizer runs short itself, at any time, and has more to say
        self.assertEqual(list(self.temporary.iterdir()), [])
        if is_served:
            self.assertEqual((status, complaints), (-signal.SIGTERM, ""))
        else:
            self.assertIn(status, (1, 2, 127))
            self.assertRegex(complaints, r"\A[^\n]+\n\Z")
        return is_served

    def test_start_with_few_descriptors(self):
        outcomes = []
        for count in range(5, 20):
            with self.subTest(count=count):
                outcomes.append(self.start_limited(f"--nofile={count}"))
        self.assertEqual((outcomes[0], outcomes[-1]), (False, True))
        self.assertTrue(IS_SANITIZED or outcomes == sorted(outcomes), outcomes)

    def test_start_with_little_memory(self):
        for megabytes in range(4, 32):
            with self.subTest(megabytes=megabytes):
                self.start_limited(f"--as={megabytes << 20}")

    def refresh_at(self, temperature):
        self.simulate("SetTemperature", "sd", "TC0P", str(temperature))
        self.wake()

    def test_running_out_of_descriptors_ends_the_reports_alone(self):
        # Nothing is done for the first time when there is no descriptor left, since a sanitizer may need one to look at
        # it; and one report at a time is asked for, so that none is under way then.
        self.start_helper(mac(bluetooth=report(60)))
        self.until(lambda: self.levels() == device(60))
        self.machine_file(mac(bluetooth=report(70)))
        self.refresh_at(39)
        self.until(lambda: self.levels() == device(70))
        self.machine_file(mac(bluetooth=report(80)))
        self.until(self.helper_rests)
        used = os.listdir(f"/proc/{self.helper.pid}/fd")
        lowest_free = next(number for number in itertools.count() if str(number) not in used)
        lift = self.lower(resource.RLIMIT_NOFILE, lowest_free)
        for number in range(40, 60):
            if number == 50:
                lift()
            self.refresh_at(number)
            # No report after the one that could not be asked for, as long as the process lives.
            self.assertEqual((self.temperatures()["TC0P"], self.levels()), (number, device(70)))

    def test_running_out_of_memory_ends_in_one_line(self):
        self.start_helper(mac(bluetooth=report(70)))
        client = self.client()
        good = client.ask(THERMAL)[0].body
        left = 64 << 20 if IS_SANITIZED else 1 << 20  # the traces of a sanitizer need some
        self.lower(resource.RLIMIT_AS, self.address_space() + left)
        for _ in range(20):
            self.wake()
            self.assertEqual([reply.body for reply in client.ask(*[THERMAL] * 100)], [good] * 100)
        client.send(message(CALL, named_number("T" * 100_000_000, 40.0), **HELPER_OBJECT, interface=SIMULATION,
                            member="SetTemperature", signature="sd"))
        status, complaints = self.end_helper()
        if not IS_SANITIZED:
            self.assertEqual((status, complaints), (1, "orv-smc-helper: the session bus went away\n"))
        self.assertNotEqual(status, 0)


if __name__ == "__main__":
    unittest.main()
