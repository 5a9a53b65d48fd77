#!/usr/bin/python3
"""usage: run.py FOLDER   Runs all checks in virtual computers whose image is in FOLDER/image, with the package
ORV_PACKAGE. One line a check; exit status 1 when one does not hold. ORV_VM_THEMES names the only themes to run."""

import os
import pathlib
import subprocess
import sys

import fleet
import package
import sessions
import surroundings
from machine import Machine, accelerator
from suite import Check, Lines, WrittenOrder

# A computer is put to sleep once a boot: after a second time the emulated one does not always come back.
BOOTS = {
    "everyday": (sessions.Activation, sessions.Journal, sessions.NoNamespaces, surroundings.Restarts,
                 surroundings.Bluetooth, surroundings.Companion, fleet.Fleet, surroundings.AnnouncedSleep),
    "leaving": (surroundings.UnannouncedSleep, package.Package),
}


def boot(folder, disk, name, themes, result):
    machine = Check.machine = Machine(folder / "image", disk, folder / f"console-{name}")
    try:
        machine.until_booted()
        if package.Package.before is None:
            package.Package.before = package.files(machine)
            package.install(machine)
        for theme in themes:
            WrittenOrder().loadTestsFromTestCase(theme).run(result)
        (folder / f"journal-{name}").write_text(machine.run("journalctl --boot --no-pager --output=short-monotonic"))
        machine.run("sync")
    finally:
        machine.off()


def main(folder):
    disk = folder / "disk.qcow2"
    subprocess.run(["qemu-img", "create", "-q", "-f", "qcow2", "-F", "raw", "-b", (folder / "image/disk.raw").resolve(),
                    disk], check=True)
    wanted = os.environ.get("ORV_VM_THEMES", "").split()
    result = Lines()
    for name, themes in BOOTS.items():
        themes = [theme for theme in themes if not wanted or theme.__name__ in wanted]
        if themes:
            print(f"== {name}, {accelerator()}", flush=True)
            boot(folder, disk, name, themes, result)
    print(f"{result.testsRun} checks, {len(result.failures) + len(result.errors)} failed")
    return not result.wasSuccessful()


sys.exit(main(pathlib.Path(sys.argv[1])))
