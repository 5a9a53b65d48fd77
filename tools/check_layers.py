#!/usr/bin/python3
"""Checks that every folder includes only what stands below it, and that only the folders of a system know it.

usage: check_layers.py ROOT
"""

import re
import sys
from pathlib import Path

# A folder may include itself and, with all that stands below them, these. The longest matching folder name counts.
ABOVE = {
    "base": [],
    "readings": [],
    "platform": ["base", "readings"],
    "platform/compat": [],
    "refresh": ["platform"],
    "smc": ["platform"],
    "thermal": ["smc"],
    "bluetooth": ["refresh"],
    "service": ["thermal", "bluetooth"],
    "json": ["platform"],
    "hardware": ["smc"],
    "simulated": ["json", "hardware"],
    "macos": ["service"],
    "linux/loop": ["platform"],
    "linux/drivers": ["hardware"],
    "linux/bus": ["linux/loop", "service", "simulated"],
    "linux/bluez": ["linux/bus", "linux/drivers"],
    "linux": ["linux/bluez"],
    "orvctl/views": ["service", "json"],
    "orvctl/collecting": ["linux", "macos"],
    "orvctl/commands": ["orvctl/collecting", "orvctl/views"],
    "orvctl": ["orvctl/commands"],
    "tests/compat": ["platform/compat"],
    "tests": ["orvctl"],
    "bench": ["tests"],
    "fuzz": ["tests"],
}
INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s*"([^"]+)"')
SYSTEM_CHECK = re.compile(r"^\s*#.*\b(__APPLE__|__linux__)\b")
SYSTEMS = {"macos", "linux", "linux/loop", "linux/drivers", "linux/bus", "linux/bluez", "hardware"}


def layer_of(path):
    matching = [name for name in ABOVE if path.startswith(name + "/")]
    return max(matching, key=len, default=None)


def allowed(layer):
    below = {layer}
    for name in ABOVE[layer]:
        below |= allowed(name)
    return below


def faults_of(root, file):
    path = file.relative_to(root).as_posix()
    layer = layer_of(path)
    for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
        if SYSTEM_CHECK.match(line) and layer not in SYSTEMS:
            yield f"{path}:{number}: asks for the operating system outside its own folder"
        included = INCLUDE.match(line)
        if included and layer_of(included[1]) not in allowed(layer):
            yield f"{path}:{number}: {layer} may not include {included[1]}"


def main():
    root = Path(sys.argv[1]).resolve()
    files = [file for name in sorted({name.split("/")[0] for name in ABOVE}) for file in (root / name).rglob("*")
             if file.suffix in {".h", ".cpp", ".mm"}]
    faults = [fault for file in files for fault in faults_of(root, file)]
    print("\n".join(faults) or f"{len(files)} files include only what stands below them")
    return 1 if faults or not files else 0


if __name__ == "__main__":
    sys.exit(main())
