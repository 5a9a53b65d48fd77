"""The package: upgraded over a running service, removed, purged."""

import os
import pathlib

from sessions import UNIT, until_logged_out
from suite import Check

# What any use of a computer changes.
ELSEWHERE = ("/dev", "/home", "/proc", "/root", "/run", "/srv", "/sys", "/tmp", "/var/cache", "/var/lib/bluetooth",
             "/var/lib/dpkg", "/var/lib/systemd", "/var/log", "/var/tmp")
PACKAGE, NEWER = "/root/orv-smc-helper.deb", "/root/newer.deb"


def files(machine):
    excluded = " -o ".join(f"-path {folder}" for folder in ELSEWHERE)
    return set(machine.run(f"find / '(' {excluded} ')' -prune -o -print").split("\n"))


def install(machine):
    machine.put(PACKAGE, pathlib.Path(os.environ["ORV_PACKAGE"]).read_bytes())
    machine.run(f"dpkg --install {PACKAGE}")


class Package(Check):
    before = None  # the files of the computer without it

    def test_upgrade_leaves_a_running_service_alone(self):
        self.machine.run(f"D=/root/newer; dpkg-deb --raw-extract {PACKAGE} $D && sed -i 's/^Version:.*/&+1/' "
                         f"$D/DEBIAN/control && dpkg-deb --build $D {NEWER} && rm -r $D")
        self.machine.run("loginctl enable-linger ada")
        show = f"systemctl --user show --property=MainPID --value {UNIT}"
        process = self.machine.run(f"orvctl thermal >/dev/null; {show}", "ada")
        self.machine.run(f"dpkg --install {NEWER}")
        self.assertEqual(self.machine.run(f"orvctl thermal --json; orvctl bluetooth --json; {show}", "ada").split("\n"),
                         ["{}", "{}", process])

    def test_restart_takes_the_new_version(self):
        program = f"readlink /proc/$(systemctl --user show --property=MainPID --value {UNIT})/exe"
        self.assertEqual(self.machine.run(f"systemctl --user daemon-reload; systemctl --user restart {UNIT}; "
                                          f"orvctl thermal --json; {program}", "ada").split("\n")[-2:],
                         ["{}", "/usr/bin/orv-smc-helper"])

    def test_removal_and_purge_leave_nothing(self):
        self.machine.run("dpkg --remove orv-smc-helper")
        self.machine.run("loginctl disable-linger ada")
        until_logged_out(self.machine, "ada")
        self.machine.run("dpkg --purge orv-smc-helper")
        self.assertEqual(files(self.machine) - self.before, set())
        self.assertEqual(self.machine.run("pgrep --full '[/]orv-smc-helper'", status=None), "")
        self.machine.run("systemctl --user list-unit-files | grep orv", "ada", status=1)
