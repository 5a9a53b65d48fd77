"""How the bundle is finished, checked, installed and released: with stand-ins for Apple's tools, which tell how they were
called."""

import os
import pathlib
import plistlib
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
PACKAGING = ROOT / "packaging" / "macos"
CMAKE = os.environ.get("ORV_CMAKE", "cmake")
IDENTIFIER, GROUP = "org.orv.SMCHelper", "group.org.orv"
ENTITLEMENTS = (PACKAGING / "OrvSMCHelper.entitlements.in").read_text().replace("@ORV_APPLICATION_GROUP@", GROUP)
STAND_IN = """#!/bin/sh
name=${{0##*/}}
echo "$name $*" >>"{log}"
{does}
"""


def program(processor, minimum):
    """A program that has no more than what is looked at."""
    build_version = struct.pack("<6I", 0x32, 24, 1, minimum[0] << 16 | minimum[1] << 8, 0, 0)
    header = struct.pack("<8I", 0xFEEDFACF, processor, 0, 2, 1, len(build_version), 0, 0)
    return header + build_version + b'v24@0:8@?<v@?@"NSDictionary">16'


def universal(*programs):
    head, body = struct.pack(">II", 0xCAFEBABE, len(programs)), b""
    for processor, content in programs:
        head += struct.pack(">5I", processor, 0, 8 + 20 * len(programs) + len(body), len(content), 0)
        body += content
    return head + body


INTEL, SILICON = (0x01000007, program(0x01000007, (10, 15))), (0x0100000C, program(0x0100000C, (11, 0)))
INFORMATION = {"CFBundleIdentifier": IDENTIFIER, "CFBundleExecutable": "OrvSMCHelper", "CFBundlePackageType": "APPL",
               "CFBundleVersion": "1", "LSBackgroundOnly": True, "NSBluetoothAlwaysUsageDescription": "Levels.",
               "OrvClientRequirement": ""}


class MacPackagingTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="orv & <test> "))
        self.addCleanup(shutil.rmtree, self.folder)
        self.log = self.folder / "log"
        self.log.touch()
        self.tools = self.folder / "tools"
        self.tools.mkdir()
        self.bundle = self.write_bundle(universal(INTEL, SILICON), INFORMATION)

    def write_bundle(self, binary, information):
        contents = self.folder / "OrvSMCHelper.app" / "Contents"
        (contents / "MacOS").mkdir(parents=True, exist_ok=True)
        (contents / "MacOS" / "OrvSMCHelper").write_bytes(binary)
        (contents / "Info.plist").write_bytes(plistlib.dumps(information))
        return contents.parent

    def stand_in(self, name, does=""):
        path = self.tools / name
        path.write_text(STAND_IN.format(log=self.log, does=does))
        path.chmod(0o755)
        return path

    def calls(self):
        lines = self.log.read_text().splitlines()
        self.log.write_text("")
        return lines

    def run_tool(self, *command, **options):
        environment = {**os.environ, "PATH": f"{self.tools}:{os.environ['PATH']}", **options.pop("variables", {})}
        return subprocess.run(command, text=True, capture_output=True, env=environment, timeout=60, **options)


class FinishTest(MacPackagingTest):
    def setUp(self):
        super().setUp()
        self.companion = self.folder / "Companion.app"
        (self.companion / "Contents").mkdir(parents=True)
        self.content = self.companion / "Contents" / "program"
        self.content.write_text("one")
        self.entitlements = self.folder / "entitlements"
        self.entitlements.write_text(ENTITLEMENTS)
        # What signs changes the program.
        self.codesign = self.stand_in("codesign", 'for app; do :; done; printf signed >>"$app/Contents/MacOS/OrvSMCHelper"')

    def finish(self, companion="", identity="-"):
        """The calls of codesign."""
        values = {"bundle": self.bundle, "record": self.folder / "record", "companion": companion,
                  "entitlements": self.entitlements, "identity": identity, "codesign": self.codesign}
        done = self.run_tool(CMAKE, *(f"-D{name}={value}" for name, value in values.items()),
                             "-P", PACKAGING / "FinishBundle.cmake")
        self.assertEqual(done.returncode, 0, done.stderr)
        return self.calls()

    def embedded(self):
        path = self.bundle / "Contents" / "Resources" / "Companion.app" / "Contents" / "program"
        return path.read_text() if path.exists() else None

    def test_companion_is_the_one_that_is_there_now(self):
        for companion, signed, expected in ((f"{self.companion}/", 1, "one"), (self.companion, 0, "one")):
            self.assertEqual((len(self.finish(companion)), self.embedded()), (signed, expected))
        self.content.write_text("two")
        os.utime(self.content, (0, 0))  # unpacked from somewhere
        self.assertEqual((len(self.finish(self.companion)), self.embedded()), (1, "two"))
        self.assertEqual((len(self.finish()), self.embedded()), (1, None))
        self.assertFalse((self.bundle / "Contents" / "Resources").exists())

    def test_signed_again_whenever_the_seal_is_broken(self):
        self.assertEqual([len(self.finish()), len(self.finish())], [1, 0])
        self.write_bundle(universal(INTEL, SILICON), INFORMATION)  # linked again
        self.assertEqual(len(self.finish()), 1)
        self.entitlements.write_text(ENTITLEMENTS.replace(GROUP, "group.other"))
        self.assertEqual([len(self.finish()), len(self.finish())], [1, 0])

    def test_only_a_real_identity_asks_for_a_time_stamp(self):
        for identity, wanted in ("-", False), ("Developer ID Application: A (B)", True):
            call, = self.finish(identity=identity)
            self.assertIn(f"--sign {identity} --options runtime --entitlements {self.entitlements}", call)
            self.assertEqual("--timestamp" in call, wanted)


class InstallTest(MacPackagingTest):
    def test_agent_names_the_installed_program_whatever_the_prefix(self):
        for prefix in "relative", "a & b <c>/", str(self.folder / "absolute"):
            with self.subTest(prefix=prefix):
                made = self.folder / "made" / f"{IDENTIFIER}.plist"
                done = self.run_tool(CMAKE, f"-DCMAKE_INSTALL_PREFIX={prefix}", f"-Didentifier={IDENTIFIER}",
                                     f"-Dagent={made}", "-P", PACKAGING / "InstallAgent.cmake", cwd=self.folder)
                self.assertEqual(done.returncode, 0, done.stderr)
                installed = self.folder / prefix / "Library/LaunchAgents" / made.name
                application = self.folder / prefix / "Applications"
                application.mkdir()
                checked = self.run_tool(sys.executable, ROOT / "tests/macos/check_bundle.py",
                                        self.bundle.rename(application / self.bundle.name), "--agent", installed)
                self.assertEqual((checked.returncode, checked.stderr), (0, ""))
                (application / self.bundle.name).rename(self.bundle)


class CheckTest(MacPackagingTest):
    def fault(self, *options):
        done = self.run_tool(sys.executable, ROOT / "tests/macos/check_bundle.py", self.bundle, *options)
        self.assertEqual(done.returncode, 1 if done.stderr else 0)
        return done.stderr

    def sign_with(self, entitlements):
        listed = self.folder / "signed"
        listed.write_text(entitlements)
        self.stand_in("codesign", f'case $* in *--xml*) cat "{listed}" ;; *--verbose*) echo runtime >&2 ;; esac')

    def test_whole_bundle_passes(self):
        self.sign_with(ENTITLEMENTS)
        self.assertEqual(self.fault("--signed"), "")

    def test_each_fault_is_named(self):
        whole = universal(INTEL, SILICON)
        late = universal((INTEL[0], program(INTEL[0], (13, 0))), SILICON)
        for binary, change, words in ((universal(INTEL), {}, "processors"), (late, {}, "x86_64: minimum (13, 0)"),
                                      (whole.replace(b"NSDictionary", b"NSMutableXXX"), {}, "extended reply type"),
                                      (whole, {"LSBackgroundOnly": False}, "LSBackgroundOnly"),
                                      (whole, {"OrvClientRequirement": "anchor apple"}, "OrvClientRequirement")):
            with self.subTest(words=words):
                self.write_bundle(binary, INFORMATION | change)
                self.assertIn(words, self.fault())

    def test_entitlements_count_with_their_values(self):
        for old, new in (GROUP, "group.other"), ("<true/>", "<false/>"), ("(allow default)", "(deny default)"):
            with self.subTest(old=old):
                self.sign_with(ENTITLEMENTS.replace(old, new, 1))
                self.assertIn("entitlements", self.fault("--signed"))


class ReleaseTest(MacPackagingTest):
    def setUp(self):
        super().setUp()
        (self.folder / "scripts").mkdir()
        self.script = pathlib.Path(shutil.copy(ROOT / "scripts" / "release-macos", self.folder / "scripts"))

    def test_missing_variables_are_named(self):
        unset = {"ORV_SIGNING_IDENTITY": "", "ORV_NOTARY_PROFILE": ""}
        for given, expected in (({}, "ORV_SIGNING_IDENTITY ORV_NOTARY_PROFILE;"),
                                ({"ORV_SIGNING_IDENTITY": "A"}, "set ORV_NOTARY_PROFILE;")):
            done = self.run_tool(self.script, variables=unset | given)
            self.assertEqual((done.returncode, done.stdout), (2, ""))
            self.assertRegex(done.stderr, r"\A[^\n]+\n\Z")
            self.assertIn(expected, done.stderr)

    def test_stapled_after_notarisation_and_packed_after_that(self):
        self.stand_in("cmake", "mkdir -p build/release-macos\n"
                      "echo CMAKE_PROJECT_VERSION:STATIC=1.2 >build/release-macos/CMakeCache.txt")
        for name in "codesign", "ditto", "xcrun", "spctl":
            self.stand_in(name)
        done = self.run_tool(self.script, variables={"ORV_SIGNING_IDENTITY": "A B", "ORV_NOTARY_PROFILE": "p",
                                                     "ORV_APPLICATION_GROUP": "group.other"})
        self.assertEqual((done.returncode, done.stdout, done.stderr),
                         (0, "build/release-macos/OrvSMCHelper-1.2.zip\n", ""))
        configure, _, *steps = self.calls()
        self.assertIn("ORV_SIGNING_IDENTITY=A B -D ORV_APPLICATION_GROUP=group.other", configure)
        self.assertEqual([" ".join(step.split()[:3]) for step in steps],
                         ["codesign --verify --strict", "ditto -c -k", "xcrun notarytool submit", "xcrun stapler staple",
                          "spctl --assess --type", "ditto -c -k"])


if __name__ == "__main__":
    unittest.main()
