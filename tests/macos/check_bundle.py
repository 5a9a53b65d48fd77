#!/usr/bin/env python3
"""Checks the make-up of a built OrvSMCHelper.app, and with --agent that of the launch agent installed with it."""

import argparse
import pathlib
import plistlib
import struct
import subprocess
import sys

MINIMUM_SYSTEMS = {"x86_64": (10, 15), "arm64": (11, 0)}
PROCESSORS = {0x01000007: "x86_64", 0x0100000C: "arm64"}
BUILD_VERSION, MINIMUM_VERSION = 0x32, 0x24
REPLY_TYPE = b'v24@0:8@?<v@?@"NSDictionary">16'


def check(condition, message):
    if not condition:
        sys.exit(f"check_bundle: {message}")


def slices(binary):
    """Processor name to the program for it."""
    magic, count = struct.unpack(">II", binary[:8])
    check(magic == 0xCAFEBABE, "the binary is for one processor only")
    found = {}
    for index in range(count):
        processor, _, offset, size, _ = struct.unpack_from(">5I", binary, 8 + 20 * index)
        found[PROCESSORS.get(processor, processor)] = binary[offset : offset + size]
    return found


def minimum_system(program):
    count = struct.unpack_from("<I", program, 16)[0]
    position = 32
    for _ in range(count):
        command, size = struct.unpack_from("<II", program, position)
        if command in (BUILD_VERSION, MINIMUM_VERSION):
            version = struct.unpack_from("<I", program, position + (12 if command == BUILD_VERSION else 8))[0]
            return version >> 16, version >> 8 & 0xFF
        position += size
    return None


def check_binary(binary):
    found = slices(binary)
    check(set(found) == set(MINIMUM_SYSTEMS), f"processors {sorted(map(str, found))}")
    for processor, program in found.items():
        check(minimum_system(program) == MINIMUM_SYSTEMS[processor], f"{processor}: minimum {minimum_system(program)}")
        check(REPLY_TYPE in program, f"{processor}: the protocol lacks its extended reply type")


def check_information(information, identifier, requirement):
    expected = {
        "CFBundleIdentifier": identifier,
        "CFBundleExecutable": "OrvSMCHelper",
        "CFBundlePackageType": "APPL",
        "LSBackgroundOnly": True,
        "OrvClientRequirement": requirement,
    }
    for key, value in expected.items():
        check(information.get(key) == value, f"Info.plist: {key} is {information.get(key)!r}")
    check(information.get("NSBluetoothAlwaysUsageDescription"), "Info.plist: no reason for the use of Bluetooth")
    check(information.get("CFBundleVersion"), "Info.plist: no version")


def entitlements_for(group):
    return {
        "com.apple.security.app-sandbox": True,
        "com.apple.security.application-groups": [group],
        "com.apple.security.device.bluetooth": True,
        "com.apple.security.device.usb": True,
        "com.apple.security.temporary-exception.sbpl": ["(allow iokit-open)", "(allow default)"],
    }


def check_signature(bundle, group):
    subprocess.run(["codesign", "--verify", "--strict", "--deep", bundle], check=True)
    command = ["codesign", "--display", "--entitlements", "-", "--xml", bundle]
    entitlements = plistlib.loads(subprocess.run(command, check=True, capture_output=True).stdout)
    check(entitlements == entitlements_for(group), f"entitlements {entitlements}")
    shown = subprocess.run(["codesign", "--display", "--verbose", bundle], check=True, capture_output=True, text=True)
    check("runtime" in shown.stderr, "the hardened runtime is off")


def check_agent(agent, program, identifier):
    # Without ProcessType: as "Background" the helper and its children would be throttled for good.
    expected = {
        "Label": identifier,
        "LimitLoadToSessionType": "Aqua",
        "MachServices": {identifier: True},
        "ProgramArguments": [str(program.absolute())],
    }
    check(agent == expected, f"the launch agent is {agent}")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("app", type=pathlib.Path)
    parser.add_argument("--identifier", default="org.orv.SMCHelper")
    parser.add_argument("--group", default="group.org.orv")
    parser.add_argument("--requirement", default="", help="what clients have to fulfil")
    parser.add_argument("--signed", action="store_true")
    parser.add_argument("--agent", type=pathlib.Path)
    asked = parser.parse_args()
    program = asked.app / "Contents" / "MacOS" / "OrvSMCHelper"
    check_binary(program.read_bytes())
    information = plistlib.loads((asked.app / "Contents" / "Info.plist").read_bytes())
    check_information(information, asked.identifier, asked.requirement)
    if asked.signed:
        check_signature(asked.app, asked.group)
    if asked.agent:
        check_agent(plistlib.loads(asked.agent.read_bytes()), program, asked.identifier)


main()
