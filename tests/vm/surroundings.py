"""What the service meets on the computer: sleep, other services that come and go, Bluetooth, a companion."""

import json
import pathlib
import re

from sessions import UNIT
from suite import Check

GUEST = pathlib.Path(__file__).resolve().parent / "guest"
REPORTS = "/run/reports"


class Reports:
    """Counts the profiler's questions to BlueZ, one of which is in every Bluetooth refresh."""

    def __init__(self, machine):
        self.machine = machine
        machine.run(f"systemctl stop vm-monitor 2>/dev/null; rm -f {REPORTS}*; systemd-run --quiet --collect "
                    f"--unit=vm-monitor --property=StandardOutput=file:{REPORTS} "
                    f"--property=StandardError=file:{REPORTS}-said busctl monitor --system "
                    "--match=\"type='method_call',member='GetManagedObjects',path='/'\"")
        machine.until(lambda: "Monitoring" in machine.run(f"cat {REPORTS}-said", status=None), "the bus monitor")

    def times(self):
        """When each was made, in seconds of the machine's clock."""
        times = re.findall(r'Timestamp="(.*)"\n.*Member=GetManagedObjects', self.machine.run(f"cat {REPORTS}"))
        return [int(self.machine.run(f"date --date='{each}' +%s")) for each in times]


class Serving(Check):
    """ada's service runs, with nobody logged in."""

    def setUp(self):
        self.machine.run("loginctl enable-linger ada")
        self.addCleanup(self.machine.run, "loginctl disable-linger ada")
        self.machine.run(f"systemctl --user start {UNIT}", "ada")

    def process(self):
        return self.machine.run(f"systemctl --user show --property=MainPID --value {UNIT}", "ada")

    def levels(self, user="ada"):
        return self.machine.run("orvctl bluetooth --json", user)


class Sleep(Serving):
    def reports_after_sleep(self, command):
        """How many there were from the wake until twenty seconds later, by the machine's own clock."""
        reports = Reports(self.machine)
        self.machine.run(f"systemctl --user restart {UNIT}", "ada")  # no two-minute refresh falls into what follows
        process = self.process()
        self.machine.sleep(command, 20)
        told = self.machine.run("journalctl --boot --dmesg --grep='PM: suspend exit' --output=json --no-pager")
        wake = int(json.loads(told)["__REALTIME_TIMESTAMP"]) // 1_000_000
        self.machine.until(lambda: int(self.machine.run("date +%s")) > wake + 20, "twenty seconds")
        self.assertEqual(self.process(), process)
        return len([time for time in reports.times() if wake - 5 <= time <= wake + 20])


class AnnouncedSleep(Sleep):
    def test_wake_is_followed_by_exactly_one_refresh(self):
        self.assertEqual(self.reports_after_sleep("systemctl suspend"), 1)


class UnannouncedSleep(Sleep):
    def test_sleep_that_nobody_announced_is_followed_by_exactly_one_refresh(self):
        self.assertEqual(self.reports_after_sleep("systemctl start --no-block systemd-suspend.service"), 1)


class Restarts(Serving):
    def restart(self, service, name):
        process = self.process()
        reports = Reports(self.machine)
        self.machine.run(f"systemctl restart {service}")
        self.machine.until(lambda: self.machine.ssh("root", f"busctl status {name}").returncode == 0, name)
        self.machine.until(lambda: self.levels() == "{}", "an answer")
        self.assertEqual(self.process(), process)
        return reports

    def test_logind_may_be_restarted(self):
        self.restart("systemd-logind", "org.freedesktop.login1")

    def test_bluetoothd_that_is_restarted_is_followed(self):
        self.machine.run("modprobe hci_vhci; modprobe bluetooth; systemctl start bluetooth")
        reports = self.restart("bluetooth", "org.bluez")
        self.machine.until(lambda: reports.times(), "a report")

    def test_system_bus_that_is_restarted_is_followed(self):
        self.restart("dbus", "org.freedesktop.login1")
        reports = Reports(self.machine)
        self.machine.run("systemctl restart bluetooth")
        self.machine.until(lambda: reports.times(), "a report")


class Bluetooth(Serving):
    ADDRESS = "00-aa-01-01-00-01"

    def adapters_are_there(self):
        """Makes them anew each time: the kernel gives up an adapter that a slow machine does not answer for in time."""
        self.machine.run("modprobe hci_vhci; systemctl stop vm-adapters 2>/dev/null; "
                         "systemd-run --quiet --collect --unit=vm-adapters btvirt -L -l2; sleep 8")
        power = "busctl set-property org.bluez /org/bluez/hci{} org.bluez.Adapter1 Powered b true"
        return self.machine.ssh("root", f"{power.format(0)} && {power.format(1)}").returncode == 0

    def test_battery_of_a_connected_device_is_shown(self):
        self.machine.put("/run/vm/battery.py", (GUEST / "battery.py").read_bytes())
        self.machine.until(self.adapters_are_there, "both adapters")
        self.machine.run("mkfifo /run/vm/level && systemd-run --quiet --unit=vm-device sh -c "
                         "'exec 3<>/run/vm/level; exec python3 /run/vm/battery.py hci0 hci1 64 <&3'")
        self.machine.until(lambda: f'"{self.ADDRESS}": {{"batteryLevel": 64}}' in spaced(self.levels()), "the level")

    def test_another_level_shows_after_two_minutes_at_most(self):
        self.machine.run("echo 63 >/run/vm/level")
        self.machine.until(lambda: '"batteryLevel": 63' in spaced(self.levels()), "the next level")

    def test_device_that_left_goes_after_two_minutes_at_most(self):
        self.machine.run("systemctl stop vm-device; busctl set-property org.bluez /org/bluez/hci1 org.bluez.Adapter1 "
                         "Powered b false")
        self.machine.until(lambda: self.levels() == "{}", "the leaving")
        self.machine.run("systemctl stop vm-adapters")


class Companion(Serving):
    COMPANION = """#!/bin/sh
folder="${XDG_DATA_HOME:-$HOME/.local/share}/group.org.orv/Library/Application Support"
mkdir -p "$folder" && echo "{\\"watch-$USER\\": {\\"batteryLevel\\": 80}}" >"$folder/applewatchbt.json"
touch ~/beyond 2>/dev/null
"""

    def test_companion_writes_for_its_user_and_nowhere_else(self):
        self.machine.put("/usr/lib/orv/Resources/watch.app", self.COMPANION.encode(), "0755")
        self.addCleanup(self.machine.run, "rm -r /usr/lib/orv/Resources; rmdir --ignore-fail-on-non-empty /usr/lib/orv")
        self.machine.run("mkdir -p ~/.local/share/group.org.orv", "ada")
        self.machine.run("mkdir -p '/srv/data of ben/group.org.orv' && chown -R ben: '/srv/data of ben'")
        self.machine.run("mkdir -p ~/.config/environment.d && echo 'XDG_DATA_HOME=/srv/data of ben' "
                         ">~/.config/environment.d/data.conf && D=~/.config/systemd/user/" + UNIT + ".d && "
                         "mkdir -p $D && printf '[Service]\\nReadWritePaths=%%h\\n' >$D/companion.conf", "ben")
        for user in "ada", "ben":
            self.machine.run(f"loginctl enable-linger {user}; systemctl restart user@$(id -u {user})")
            self.machine.run(f"systemctl --user restart {UNIT}", user)
        for user in "ada", "ben":
            self.machine.until(lambda: f"watch-{user}" in self.levels(user), f"{user}'s watch")
        written = self.machine.run("ls ~ada/beyond ~ben/beyond 2>/dev/null", status=None)
        self.assertEqual(written, "/home/ben/beyond")

    def tearDown(self):
        self.machine.run("loginctl disable-linger ben; rm -rf '/srv/data of ben' ~ada/.local/share/group.org.orv")
        self.machine.run(f"systemctl --user restart {UNIT}", "ada")


def spaced(reply):
    """A reply of one line, whatever space orvctl writes."""
    return re.sub(r"\s+", " ", reply.replace(":", ": ").replace("{", "{ ")).replace("{ ", "{").replace(" }", "}")
