#!/usr/bin/python3
"""Checks that every folder includes only what stands below it, and that no folder but platform/ knows the system.

usage: check_layers.py ROOT
"""

import re
import sys
from pathlib import Path

# A folder may include itself and these. The longest matching folder name counts.
READINGS = {"readings"}
PLATFORM = READINGS | {"platform"}
REFRESH = PLATFORM | {"refresh"}
SMC = PLATFORM | {"smc"}
THERMAL = SMC | {"thermal"}
BLUETOOTH = REFRESH | {"bluetooth"}
SERVICE = THERMAL | BLUETOOTH | {"service"}
SIMULATED = SERVICE | {"platform/json", "platform/hardware", "platform/simulated"}
LINUX = SIMULATED | {"platform/linux"}
ALLOWED = {
    "readings": READINGS,
    "platform": PLATFORM,
    "refresh": REFRESH,
    "smc": SMC,
    "thermal": THERMAL,
    "bluetooth": BLUETOOTH,
    "service": SERVICE,
    "platform/json": PLATFORM | {"platform/json"},
    "platform/hardware": SMC | {"platform/hardware"},
    "platform/simulated": SIMULATED,
    "platform/linux": LINUX,
    "platform/macos": SERVICE | {"platform/macos"},
    "platform/compat": set(),
    "tools": LINUX | {"platform/macos", "tools"},
}
INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s*"([^"]+)"')
SYSTEM_CHECK = re.compile(r"^\s*#.*\b(__APPLE__|__linux__)\b")
PORTABLE = {"readings", "refresh", "smc", "thermal", "bluetooth", "service", "tools"}


def layer_of(path):
    matching = [name for name in ALLOWED if path == name or path.startswith(name + "/")]
    return max(matching, key=len, default=None)


def faults_of(root, file):
    path = file.relative_to(root).as_posix()
    layer = layer_of(path)
    for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
        if SYSTEM_CHECK.match(line) and layer in PORTABLE:
            yield f"{path}:{number}: asks for the operating system outside platform/"
        included = INCLUDE.match(line)
        if included and layer_of(included[1]) not in ALLOWED[layer]:
            yield f"{path}:{number}: {layer} may not include {included[1]}"


def main():
    root = Path(sys.argv[1]).resolve()
    files = [file for name in sorted({name.split("/")[0] for name in ALLOWED}) for file in (root / name).rglob("*")
             if file.suffix in {".h", ".cpp", ".mm"}]
    faults = [fault for file in files for fault in faults_of(root, file)]
    print("\n".join(faults) or f"{len(files)} files include only what stands below them")
    return 1 if faults or not files else 0


if __name__ == "__main__":
    sys.exit(main())
