#!/usr/bin/python3
"""Checks that every folder includes only what stands below it, and that only the folders of a system know it.

usage: check_layers.py ROOT
"""

import re
import sys
from pathlib import Path

# A folder may include itself and, with all that stands below them, these. The longest matching folder name counts. An
# arrow that nothing needs is a fault too, so that the table stays the truth.
BELOW = {
    "base": [],
    "readings": [],
    "platform": ["base", "readings"],
    "platform/compat": [],
    "refresh": ["platform"],
    "smc": ["base", "readings"],
    "thermal": ["platform", "smc"],
    "bluetooth": ["refresh"],
    "service": ["thermal", "bluetooth"],
    "explain": ["service"],
    "json": ["platform"],
    "hardware": ["smc"],
    "simulated": ["json", "hardware", "bluetooth"],
    "recording": ["thermal", "bluetooth", "json"],
    "macos": ["explain", "recording"],
    "examples/menubar": ["macos"],
    "linux/loop": ["platform"],
    "linux/drivers": ["hardware"],
    "linux/bus": ["linux/loop", "service", "simulated"],
    "linux/bluez": ["linux/bus"],
    "linux": ["linux/bluez", "linux/drivers", "explain", "recording"],
    "orvctl/views": ["json", "explain"],
    "orvctl/watching": ["orvctl/views"],
    "orvctl/plotting": ["orvctl/watching"],
    "orvctl/metrics": ["orvctl/views"],
    "orvctl/checking": ["orvctl/views"],
    "orvctl/collecting": ["service", "simulated", "explain", "recording"],
    "orvctl/arguments": ["orvctl/views"],
    "orvctl/completion": ["orvctl/arguments"],
    "orvctl/commands": ["orvctl/collecting", "orvctl/completion", "orvctl/plotting", "orvctl/metrics", "orvctl/checking"],
    "orvctl": ["orvctl/commands", "orvctl/views"],
    "orvctl/top": ["orvctl/watching"],
    "orvctl/screen": ["orvctl/top", "orvctl/arguments", "orvctl/collecting"],
    "tests/compat": ["platform/compat"],
    "tests/support": ["linux/bus", "linux/drivers"],
    "tests/proof": ["explain", "simulated"],
    "tests/macos": ["tests/json"],
    "tests/service": ["service", "json", "tests/support"],
    "bench/support": ["simulated", "thermal"],
    "bench": ["bench/support", "tests/support"],
    "fuzz/support": ["tests/support"],
    "fuzz": ["fuzz/support", "linux", "orvctl/collecting"],
}
INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s*"([^"]+)"', re.MULTILINE)
SYSTEM_CHECK = re.compile(r"^\s*#.*\b(__APPLE__|__linux__)\b", re.MULTILINE)
SYSTEMS = {"macos", "linux", "linux/loop", "linux/drivers", "linux/bus", "linux/bluez", "hardware"}


def layer_of(path):
    """Each folder of the tests that is not listed is a layer over the folder that it mirrors."""
    matching = [name for name in BELOW if path.startswith(name + "/")]
    if path.startswith("tests/") and not matching:
        return path.rpartition("/")[0]
    return max(matching, key=len, default=None)


def below(layer):
    if layer in BELOW:
        return BELOW[layer]
    mirrored = layer_of(layer.removeprefix("tests/") + "/")
    return ["tests/support", *([mirrored] if mirrored else [])]


def allowed(layer):
    return {layer}.union(*map(allowed, below(layer)))


def faults_of(path, text, used):
    layer = layer_of(path)
    for asked in SYSTEM_CHECK.finditer(text):
        if layer not in SYSTEMS:
            yield f"{path}: asks for the operating system outside its own folder: {asked[0].strip()}"
    for included in INCLUDE.findall(text):
        used.add((layer, layer_of(included)))
        if layer_of(included) not in allowed(layer):
            yield f"{path}: {layer} may not include {included}"


def main():
    root = Path(sys.argv[1]).resolve()
    files = [file.relative_to(root).as_posix() for top in sorted({name.split("/")[0] for name in BELOW})
             for file in (root / top).rglob("*") if file.suffix in {".h", ".cpp", ".mm", ".m"}]
    used = set()
    faults = [fault for path in files for fault in faults_of(path, (root / path).read_text(encoding="utf-8"), used)]
    faults += [f"{layer} includes nothing of {name}, which check_layers.py lists below it"
               for layer, names in BELOW.items() for name in names if (layer, name) not in used]
    print("\n".join(faults) or f"{len(files)} files include only what stands below them")
    return 1 if faults or not files else 0


if __name__ == "__main__":
    sys.exit(main())
