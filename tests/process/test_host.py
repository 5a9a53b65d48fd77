"""The helper beside logind and BlueZ, which are mocks on a private system bus."""

import contextlib
import os
import pathlib
import re
import shutil
import socket
import subprocess
import threading
import time
import unittest

from host import HostTest
from support import PATIENCE

LOGIN = ("org.freedesktop.login1", "/org/freedesktop/login1")
BLUEZ = ("org.bluez", "/org/bluez")
KEYBOARD = ("org.bluez", "/org/bluez/hci0/dev_AA_BB_CC_DD_EE_01")
MOCK = "org.freedesktop.DBus.Mock"
A_MOMENT = 0.5  # seconds, in which what must not happen would have happened


class SystemBusTest(HostTest):
    def start_system_bus(self):
        bus = self.start("dbus-daemon", "--session", "--nofork", f"--address={self.system_address}", "--print-address",
                         stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        bus.stdout.readline()
        return bus

    def start_mock(self, template, name):
        mock = self.start("/usr/bin/python3", "-m", "dbusmock", "--system", "--template", template,
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.assertEqual(self.run_program("gdbus", "wait", "--system", f"--timeout={PATIENCE}", name).returncode, 0)
        return mock

    def tell(self, target, method, *arguments, interface=MOCK):
        done = self.run_program("busctl", "--system", "call", *target, interface, method, *arguments)
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def wait_for_matches(self, *words):
        """Returns when the helper listens."""
        command = ("busctl", "--system", "call", "org.freedesktop.DBus", "/org/freedesktop/DBus",
                   "org.freedesktop.DBus.Debug.Stats", "GetAllMatchRules")
        rules = lambda: self.run_program(*command).stdout.replace("\\", "")
        self.until(lambda: all(word in rules() for word in words))

    def prepare_for_sleep(self, is_starting):
        self.tell(LOGIN, "EmitSignal", "sssav", "org.freedesktop.login1.Manager", "PrepareForSleep", "b", "1", "b",
                  is_starting)

    def start_with_login(self):
        self.start_system_bus()
        mock = self.start_mock("logind", LOGIN[0])
        self.start_host()
        self.wait_for_matches("PrepareForSleep")
        return mock

    def start_bluez(self):
        mock = self.start_mock("bluez5", BLUEZ[0])
        self.tell(BLUEZ, "AddAdapter", "ss", "hci0", "computer", interface="org.bluez.Mock")
        self.tell(BLUEZ, "AddDevice", "sss", "hci0", "AA:BB:CC:DD:EE:01", "Keyboard", interface="org.bluez.Mock")
        return mock

    def change_device(self, name, truth="true"):
        self.tell(KEYBOARD, "UpdateProperties", "sa{sv}", "org.bluez.Device1", "1", name, "b", truth)

    def connect_until(self, levels):
        """A connection during a refresh is not followed by another one, so it may take several."""
        self.until(lambda: self.change_device("Connected") or self.levels() == levels)

    def add_battery(self, percentage):
        self.tell(KEYBOARD, "AddProperties", "sa{sv}", "org.bluez.Battery1", "1", "Percentage", "y", percentage)

    def children(self):
        """Zombies too."""
        return self.run_program("pgrep", "-P", str(self.helper.pid)).stdout.split()


class SleepTest(SystemBusTest):
    def test_nothing_is_refreshed_between_sleep_and_wake(self):
        self.write_intel(temp1_label="TC0P\n", temp1_input="40000\n")
        login = self.start_with_login()
        self.prepare_for_sleep("true")
        self.write_intel(temp1_input="50000\n")
        time.sleep(5.5)  # a refresh that does not happen is no event
        self.assertEqual(self.temperatures(), {"TC0P": 40.0})
        self.prepare_for_sleep("false")
        self.until(lambda: self.temperatures() == {"TC0P": 50.0})
        # Nobody is left to tell of the wake: it must not be waited for.
        self.prepare_for_sleep("true")
        self.write_intel(temp1_input="60000\n")
        login.kill()
        self.until(lambda: self.temperatures() == {"TC0P": 60.0})


class LateBus:
    """Stands before a session bus and keeps every claim of a name waiting for a moment."""

    def __init__(self, path, address):
        self.bus = address.partition(",")[0].removeprefix("unix:path=")
        self.listener = socket.socket(socket.AF_UNIX)
        self.listener.bind(str(path))
        self.listener.listen()
        threading.Thread(target=self.accept, daemon=True).start()

    def accept(self):
        with contextlib.suppress(OSError):
            while True:
                client, bus = self.listener.accept()[0], socket.socket(socket.AF_UNIX)
                bus.connect(self.bus)
                for ends in (client, bus), (bus, client):
                    threading.Thread(target=self.carry, args=ends, daemon=True).start()

    def carry(self, source, target):
        with contextlib.suppress(OSError), source, target:
            while piece := source.recv(1 << 16):
                if b"RequestName" in piece:
                    time.sleep(0.25)
                target.sendall(piece)


class WakeUpTest(HostTest):
    def switches(self):
        status = pathlib.Path(f"/proc/{self.helper.pid}/status").read_text()
        return int(re.search(r"^voluntary_ctxt_switches:\s(\d+)", status, re.MULTILINE)[1])

    def test_refresh_and_ticks_share_their_wake_ups_however_late_the_bus_answers(self):
        bus = LateBus(self.folder / "late", self.environment["DBUS_SESSION_BUS_ADDRESS"])
        self.addCleanup(bus.listener.close)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={self.folder}/late".replace(" ", "%20")
        self.start_host()
        time.sleep(1)  # what the start set going
        wake_ups, known, started = [], self.switches(), time.monotonic()
        while (now := time.monotonic()) < started + 9:
            if known != (known := self.switches()) and (not wake_ups or now > wake_ups[-1] + 0.1):
                wake_ups.append(now)
            time.sleep(0.02)
        self.assertIn(len(wake_ups), (1, 2))  # in less than two intervals


class BluezTest(SystemBusTest):
    def setUp(self):
        super().setUp()
        self.runs = self.folder / "runs"
        self.runs.touch()
        real = self.profiler.rename(self.profiler.with_name("real"))
        self.profiler.write_text(f'#!/bin/sh\necho run >> "{self.runs}"\nexec "{real}" "$@"\n')
        self.profiler.chmod(0o755)

    def run_count(self):
        return len(self.runs.read_text().splitlines())

    def causes_run(self, change):
        """Whether a change makes the helper look; it does once nothing else keeps it busy."""
        self.until(lambda: not self.children())
        before = self.run_count()
        change()
        self.until(lambda: self.run_count() > before)
        self.until(lambda: not self.children())
        self.assertEqual(self.run_count(), before + 1)

    def start_with_bluez(self):
        self.start_system_bus()
        bluez = self.start_bluez()
        self.start_host()
        self.wait_for_matches("org.bluez.Device1", "InterfacesAdded", "arg0='org.bluez'")
        self.until(lambda: self.run_count() == 1)
        return bluez

    def test_events_are_followed(self):
        self.start_with_bluez()
        self.causes_run(lambda: self.change_device("Connected"))
        self.assertEqual(self.levels(), {})
        self.add_battery("85")
        battery_added = ("EmitSignal", "sssav", "org.freedesktop.DBus.ObjectManager", "InterfacesAdded", "oa{sa{sv}}",
                         "2", "o", KEYBOARD[1], "a{sa{sv}}", "1", "org.bluez.Battery1", "1", "Percentage", "y", "85")
        self.causes_run(lambda: self.tell((BLUEZ[0], "/"), *battery_added))
        level = {"aa-bb-cc-dd-ee-01": {"batteryLevel": 85}}
        self.until(lambda: self.levels() == level)
        self.causes_run(lambda: self.change_device("Paired"))
        before = self.run_count()
        self.change_device("Connected", "false")
        self.tell(KEYBOARD, "UpdateProperties", "sa{sv}", "org.bluez.Device1", "1", "RSSI", "n", "--", "-40")
        time.sleep(A_MOMENT)
        self.assertEqual(self.run_count(), before)

    def test_bluetoothd_may_go_and_come_back(self):
        bluez = self.start_with_bluez()
        self.add_battery("85")
        self.connect_until({"aa-bb-cc-dd-ee-01": {"batteryLevel": 85}})
        self.causes_run(bluez.kill)
        self.until(lambda: self.levels() == {})
        self.start_bluez()
        self.add_battery("70")
        self.connect_until({"aa-bb-cc-dd-ee-01": {"batteryLevel": 70}})

    def test_system_bus_may_come_late_and_twice(self):
        self.write({"sys/class/power_supply/hid-aa:bb:cc:dd:ee:01-battery/capacity": "60\n"})
        self.start_host()
        for _ in range(2):
            before = self.run_count()
            bus = self.start_system_bus()
            self.wait_for_matches("PrepareForSleep", "org.bluez.Device1")
            self.until(lambda: self.run_count() > before)
            self.start_bluez()
            self.connect_until({"aa-bb-cc-dd-ee-01": {"batteryLevel": 60}})
            bus.kill()
            (self.folder / "system-bus").unlink()


class CompanionTest(SystemBusTest):
    def write_companion(self, path, name):
        path = self.folder / "lib/orv/Resources" / path
        path.parent.mkdir(parents=True, exist_ok=True)
        container = self.folder / "data/group.org.orv/Library/Application Support"
        path.write_text(f"""#!/bin/sh
            echo {name} >> '{self.folder}/started'
            mkdir -p '{container}'
            echo '{{"{name}": {{"batteryLevel": 80}}}}' > '{container}/applewatchbt.json'
            read line < '{self.folder}/gate'
            """)
        path.chmod(0o755)

    def started(self):
        log = self.folder / "started"
        return log.read_text().split() if log.exists() else []

    def test_first_companion_runs_in_the_background_once_at_a_time(self):
        os.mkfifo(self.folder / "gate")
        self.write_companion("Alpha.app/Alpha", "first")
        self.write_companion("Beta.app", "second")
        self.start_with_login()
        self.until(lambda: self.levels() == {"first": {"batteryLevel": 80}})
        self.prepare_for_sleep("false")  # the next cycle
        time.sleep(A_MOMENT)
        self.assertEqual(self.started(), ["first"])
        (self.folder / "gate").write_text("end\n")
        self.until(lambda: not self.children())
        # A file this time, and again in a new cycle, which begins five seconds after the last one at the earliest.
        shutil.rmtree(self.folder / "lib/orv/Resources/Alpha.app")
        self.until(lambda: self.prepare_for_sleep("false") or self.started() == ["first", "second"])
        self.until(lambda: self.levels() == {"second": {"batteryLevel": 80}})
        (self.folder / "gate").write_text("end\n")
        self.until(lambda: not self.children())


if __name__ == "__main__":
    unittest.main()
