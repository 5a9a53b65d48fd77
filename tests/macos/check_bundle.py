#!/usr/bin/env python3
"""Checks the make-up of a built OrvSMCHelper.app: usage: check_bundle.py APP IDENTIFIER [--signed]"""

import pathlib
import plistlib
import struct
import subprocess
import sys

MINIMUM_SYSTEMS = {"x86_64": (10, 15), "arm64": (11, 0)}
PROCESSORS = {0x01000007: "x86_64", 0x0100000C: "arm64"}
BUILD_VERSION, MINIMUM_VERSION = 0x32, 0x24
REPLY_TYPE = b'v24@0:8@?<v@?@"NSDictionary">16'
ENTITLEMENTS = {
    "com.apple.security.app-sandbox",
    "com.apple.security.application-groups",
    "com.apple.security.device.bluetooth",
    "com.apple.security.device.usb",
    "com.apple.security.temporary-exception.sbpl",
}


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


def check_information(information, identifier):
    expected = {
        "CFBundleIdentifier": identifier,
        "CFBundleExecutable": "OrvSMCHelper",
        "CFBundlePackageType": "APPL",
        "LSBackgroundOnly": True,
    }
    for key, value in expected.items():
        check(information.get(key) == value, f"Info.plist: {key} is {information.get(key)!r}")
    check(information.get("NSBluetoothAlwaysUsageDescription"), "Info.plist: no reason for the use of Bluetooth")
    check(information.get("CFBundleVersion"), "Info.plist: no version")


def check_signature(bundle):
    subprocess.run(["codesign", "--verify", "--strict", bundle], check=True)
    command = ["codesign", "--display", "--entitlements", "-", "--xml", bundle]
    entitlements = plistlib.loads(subprocess.run(command, check=True, capture_output=True).stdout)
    check(set(entitlements) == ENTITLEMENTS, f"entitlements {sorted(entitlements)}")
    shown = subprocess.run(["codesign", "--display", "--verbose", bundle], check=True, capture_output=True, text=True)
    check("runtime" in shown.stderr, "the hardened runtime is off")


def main(bundle, identifier, *options):
    contents = pathlib.Path(bundle) / "Contents"
    check_binary((contents / "MacOS" / "OrvSMCHelper").read_bytes())
    check_information(plistlib.loads((contents / "Info.plist").read_bytes()), identifier)
    if "--signed" in options:
        check_signature(bundle)


main(*sys.argv[1:])
