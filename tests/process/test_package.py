"""The Debian package: made, installed into an empty root, used and removed."""

import configparser
import email.utils
import gzip
import json
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree

import jsonschema

from support import BIN, NAME, PATH, REQUESTS, ProcessTest

TOOLS = {**os.environ, "LC_ALL": "C.UTF-8", "PATH": os.environ["PATH"] + ":/usr/sbin:/sbin"}


def run(*command, **options):
    return subprocess.run(command, env=TOOLS, text=True, capture_output=True, check=True, timeout=600, **options)


def files_in(folder):
    return {f"/{path.relative_to(folder)}" for path in folder.rglob("*") if not path.is_dir()}


def members_of(document, name):
    interface, = (each for each in xml.etree.ElementTree.fromstring(document) if each.get("name") == name)
    return {member.get("name"): (member.tag, member.get("type"), [dict(part.attrib) for part in member])
            for member in interface}


class PackageTest(ProcessTest):
    @classmethod
    def setUpClass(cls):
        cls.packages = pathlib.Path(tempfile.mkdtemp(prefix="orv-package-"))
        cls.addClassCleanup(shutil.rmtree, cls.packages)
        run("cpack", "--config", BIN.parent / "CPackConfig.cmake", "-B", cls.packages)
        cls.package, = cls.packages.glob("*.deb")

    def setUp(self):
        super().setUp()
        self.root = self.folder / "root"
        (self.root / "var/lib/dpkg/info").mkdir(parents=True)
        (self.root / "var/lib/dpkg/updates").mkdir()
        (self.root / "var/lib/dpkg/status").touch()
        self.dpkg("--install", self.package)

    def dpkg(self, *arguments):
        run("dpkg", f"--root={self.root}", "--force-depends", "--force-not-root", "--path-include=*",
            f"--log={self.folder}/log", *arguments)

    def installed(self):
        return {path for path in files_in(self.root) if not path.startswith("/var/lib/dpkg/")}

    def sections(self, path):
        parser = configparser.ConfigParser(strict=False, interpolation=None, delimiters="=")
        parser.optionxform = str
        parser.read(self.root / path)
        return parser

    def activate_from_root(self):
        """Starts a bus that starts services from the root only."""
        service = self.root / f"usr/share/dbus-1/services/{NAME}.service"
        service.write_text(re.sub("^Exec=(/.*)", rf'Exec="{self.root}\1"', service.read_text(), flags=re.MULTILINE))
        self.environment |= {"XDG_DATA_DIRS": str(self.root / "usr/share"), "XDG_DATA_HOME": str(self.folder / "data"),
                             "DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/nonexistent", "ORV_ROOT": str(self.folder / "mac")}
        bus = self.start("dbus-daemon", "--session", "--nofork", "--print-address", stdout=subprocess.PIPE,
                         stderr=subprocess.DEVNULL)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()

    def test_first_call_starts_the_installed_service(self):
        driver = self.folder / "mac/sys/devices/platform/applesmc.768"
        driver.mkdir(parents=True)
        (driver / "temp1_label").write_text("TC0P\n")
        (driver / "temp1_input").write_text("47500\n")
        self.activate_from_root()
        done = self.run_program(self.root / "usr/bin/orvctl", "thermal", "--json")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(json.loads(done.stdout)["TC0P"]["value"], 47.5)
        live = self.run_program("gdbus", "introspect", "--session", "--xml", "--dest", NAME, "--object-path", PATH)
        for interface in REQUESTS, "org.orv.Sensors1":
            description = (self.root / f"usr/share/dbus-1/interfaces/{interface}.xml").read_text()
            self.assertEqual(members_of(description, interface), members_of(live.stdout, interface))

    def test_removal_leaves_nothing(self):
        self.assertIn("/usr/libexec/orv/system_profiler", self.installed())
        self.assertIn("/usr/libexec/orv/orvctl-top", self.installed())
        tarball, = self.packages.glob("*.tar.gz")
        unpacked = self.folder / "unpacked"
        unpacked.mkdir()
        run("tar", "-xf", tarball, "-C", unpacked, "--strip-components=1")
        self.assertEqual(files_in(unpacked), self.installed())
        self.dpkg("--purge", "orv-smc-helper")
        self.assertEqual(self.installed(), set())
        self.assertFalse((self.root / "usr").exists())

    def test_unit_and_activation_file_fit_together(self):
        unit = self.sections("usr/lib/systemd/user/orv-smc-helper.service")["Service"]
        activation = self.sections(f"usr/share/dbus-1/services/{NAME}.service")["D-BUS Service"]
        self.assertEqual((unit["BusName"], activation["Name"]), (NAME, NAME))
        self.assertEqual(unit["ExecStart"], activation["Exec"])
        self.assertIn(unit["ExecStart"], self.installed())
        self.assertIn(f"/usr/lib/systemd/user/{activation['SystemdService']}", self.installed())

    def test_unit_is_hardened(self):
        unit = self.root / "usr/lib/systemd/user/orv-smc-helper.service"
        run("systemd-analyze", "security", "--offline=true", "--threshold=40", "--no-pager", unit)
        unit.write_text(re.sub("^ExecStart=(/.*)", rf'ExecStart="{self.root}\1"', unit.read_text(), flags=re.MULTILINE))
        self.assertEqual(run("systemd-analyze", "verify", "--man=no", unit).stderr, "")

    def test_metrics_are_written_by_a_timer_that_is_off(self):
        units = self.root / "usr/lib/systemd/user"
        service = units / "orv-metrics.service"
        self.assertIn(self.sections(service)["Service"]["ExecStart"].split()[0], self.installed())
        self.assertEqual([path for path in units.rglob("*") if path.is_symlink()], [])
        service.write_text(re.sub("^ExecStart=(/\\S+)", rf'ExecStart="{self.root}\1"', service.read_text(), flags=re.MULTILINE))
        self.assertEqual(run("systemd-analyze", "verify", "--man=no", units / "orv-metrics.timer").stderr, "")

    def drop_ins(self, data_home, unshare):
        """What the generator adds to the unit where making a namespace ends like the program unshare."""
        programs, units = self.folder / "programs", self.folder / f"units-{unshare}"
        programs.mkdir(exist_ok=True)
        (programs / "unshare").unlink(missing_ok=True)
        (programs / "unshare").symlink_to(f"/bin/{unshare}")
        subprocess.run([self.root / "usr/lib/systemd/user-generators/orv-smc-helper-generator", units], check=True,
                       env=TOOLS | {"PATH": f"{programs}:{TOOLS['PATH']}", "XDG_DATA_HOME": data_home})
        return sorted(units.rglob("*.conf"))

    def test_unit_is_fitted_to_where_it_runs(self):
        self.assertEqual(self.drop_ins("not/absolute", "true"), [])
        data, = self.drop_ins('/srv/a "b"%', "true")
        self.assertEqual(data.read_text(), '[Service]\nReadWritePaths=-"/srv/a \\"b\\"%%/group.org.orv"\n')
        data, unprivileged = self.drop_ins("/srv", "false")  # the later one takes the earlier one's path back
        taken_back = self.sections(str(unprivileged.readlink()).lstrip("/"))["Service"]
        unit = list(self.sections("usr/lib/systemd/user/orv-smc-helper.service")["Service"])
        self.assertEqual(set(taken_back), set(unit[unit.index("PrivateUsers"):]))

    def test_group_of_the_rule_is_made(self):
        (self.root / "etc").mkdir()
        run("systemd-sysusers", f"--root={self.root}")
        group, = re.findall(r"^(\S+?):", (self.root / "etc/group").read_text(), re.MULTILINE)
        rule = (self.root / "usr/lib/udev/rules.d/60-orv-smc.rules").read_text()
        self.assertIn(f"chgrp {group} ", rule)
        self.assertIn(f"getent group {group}\"", rule)

    def page(self, name):
        return gzip.decompress((self.root / f"usr/share/man/man{name[-1]}/{name}.gz").read_bytes()).decode()

    def test_manual_pages_have_no_faults(self):
        for page in sorted(self.root.glob("usr/share/man/man*/*")):
            with self.subTest(page=page.name):
                done = run("man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", page)
                self.assertEqual(done.stderr, "")
                done = subprocess.run(("mandoc", "-T", "lint", "-W", "style", page), capture_output=True, text=True)
                self.assertEqual((done.stdout, done.stderr), ("", ""))

    def test_every_command_has_a_page_that_names_its_options(self):
        commands = re.findall(r"^  ([a-z]+) ", self.orvctl("--help").partition("Subcommands:")[2], re.MULTILINE)
        for command in commands:
            with self.subTest(command=command):
                page = self.page(f"orvctl-{command}.1").replace("\\", "")
                headings = re.findall(r"^\.SH (\w+)", page, re.MULTILINE)
                self.assertEqual(headings[:4], ["NAME", "SYNOPSIS", "EXAMPLES", "DESCRIPTION"])
                options = re.findall(r"^  (?:-\w,)?(--[a-z-]+)", self.orvctl(command, "--help"), re.MULTILINE)
                self.assertEqual([option for option in options if option not in page], [])
                self.assertIn(f"orvctl\\-{command} (1)", self.page("orvctl.1"))

    def test_installed_schemas_are_the_ones_that_are_named(self):
        document = json.loads(self.orvctl("--version", "--json"))
        folder = self.root / "usr/share/orv/schemas"
        self.assertEqual(sorted(document["schemas"]),
                         sorted(re.sub(r"-(\d+)$", r"/\1", path.stem) for path in folder.iterdir()))
        jsonschema.validate(document, json.loads((folder / "orv.version-1.json").read_text()))
        self.assertEqual(self.orvctl("--version"), f"orvctl {document['version']}\n")

    def test_changelog_and_pages_are_of_this_version(self):
        log = gzip.decompress((self.root / "usr/share/doc/orv-smc-helper/changelog.gz").read_bytes()).decode()
        version = re.match(r"orv-smc-helper \((\S+)\)", log)[1]
        date = email.utils.parsedate_to_datetime(re.search(r"^ -- .*>  (.*)$", log, re.MULTILINE)[1]).date()
        self.assertEqual(self.orvctl("--version"), f"orvctl {version}\n")
        self.assertIn(f' {date} "orv\\-smc\\-helper {version}"', self.page("orvctl.1").split("\n")[0])

    def test_shells_find_their_completions(self):
        for shell, place in (("bash", "bash-completion/completions/orvctl"), ("zsh", "zsh/vendor-completions/_orvctl"),
                             ("fish", "fish/vendor_completions.d/orvctl.fish")):
            self.assertEqual((self.root / "usr/share" / place).read_text(), self.orvctl("completion", shell))


if __name__ == "__main__":
    unittest.main()
