"""Runs the built programs on a private session bus. Every wait is bounded."""

import functools
import json
import os
import pathlib
import pty
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

BIN = pathlib.Path(os.environ["ORV_BIN"])
HELPER = BIN / "orv-smc-helper"
IS_SANITIZED = b"__sanitizer_" in HELPER.read_bytes()
MACHINES = pathlib.Path(__file__).resolve().parents[2] / "machines"
NAME = os.environ.get("ORV_NAME", "org.orv.SMCHelper")
PATH = "/" + NAME.replace(".", "/")
REQUESTS = "org.orv.OrvXPCRequestData"
SIMULATION = "org.orv.SimulatedMac"
signal.signal(signal.SIGQUIT, signal.SIG_DFL)  # which the shells' background jobs ignore, and what they start
PATIENCE = 60  # seconds: for a sanitized build on a busy machine
BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
  "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen><auth>EXTERNAL</auth><servicedir>{folder}</servicedir>
<policy context="default">
<allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/></policy>{limits}</busconfig>"""


def mac(**members):
    """A small Intel Mac whose readings stand still."""
    rows = {"TC0P": ("sp78", "2800"), "TB0T": ("flt ", "0000807f"), "TA0P": ("sp78", "1e80"),
            "F0Ac": ("fpe2", "12c0"), "F0Mn": ("fpe2", "0fa0"), "F0Mx": ("fpe2", "4e20")}
    return {"sysctl": {"hw.model": "iMac18,3", "machdep.cpu.brand_string": "Intel(R) Core(TM) i5"},
            "smc": [{"key": key, "type": kind, "bytes": digits} for key, (kind, digits) in rows.items()], **members}


def report(level):
    """A profiler's report of one connected device."""
    device = {"device_address": "AA:BB:CC:DD:EE:01", "device_batteryLevelMain": f"{level}%"}
    return {"SPBluetoothDataType": [{"device_connected": [{"Keyboard": device}]}]}


def device(level):
    """The reply to that report."""
    return {"aa-bb-cc-dd-ee-01": {"batteryLevel": level}}


def plain(value):
    """A busctl reply without its D-Bus types."""
    if isinstance(value, list):
        return [plain(item) for item in value]
    if not isinstance(value, dict):
        return value
    if value.keys() == {"type", "data"}:
        return plain(value["data"])
    return {key: plain(content) for key, content in value.items()}


def read_to_the_end(controller):
    """What is written to a pseudo-terminal until nobody has it open any more. Closes the controlling side."""
    shown = b""
    try:
        while piece := os.read(controller, 4096):
            shown += piece
    except OSError:  # how the end of a terminal reads
        pass
    os.close(controller)
    return shown


def needs_a_terminal(test):
    """Where there are no pseudo-terminals, as in a plain chroot, the test says so and is left out."""
    @functools.wraps(test)
    def run(self):
        try:
            for file in pty.openpty():
                os.close(file)
        except OSError as error:
            print(f"not tested: {self.id()} needs a pseudo-terminal (is /dev/pts mounted?): {error}", file=sys.stderr)
            return
        test(self)
    return run


class ProcessTest(unittest.TestCase):
    maxDiff = None
    helper = None

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="orv test "))
        self.addCleanup(shutil.rmtree, self.folder)
        self.temporary = self.folder / "tmp"
        self.temporary.mkdir()
        self.environment = {**os.environ, "TMPDIR": str(self.temporary), "LC_ALL": "C.UTF-8"}
        self.environment.pop("NO_COLOR", None)
        self.start_session_bus("--session")

    def start_session_bus(self, *options):
        """From here on programs find this one."""
        self.bus = self.start("dbus-daemon", *options, "--nofork", "--print-address",
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self.bus.stdout.readline().strip()

    def start_limited_bus(self, *options, **limits):
        """A bus with other limits than the session's, which are next to none, and with the services of our folder."""
        limits = {"max_message_size": 10**9, "max_outgoing_bytes": 10**9, "max_replies_per_connection": 50_000, **limits}
        lines = (f'<limit name="{name}">{number}</limit>' for name, number in limits.items())
        configuration = self.folder / "bus.conf"
        configuration.write_text(BUS_CONFIGURATION.format(folder=self.folder, limits="".join(lines)))
        self.start_session_bus(f"--config-file={configuration}", *options)

    def tearDown(self):
        # Also where a sanitizer's complaint shows.
        if self.helper and self.helper.poll() is None:
            self.assertEqual(self.end_helper(signal.SIGTERM), (-signal.SIGTERM, ""))

    def start(self, *command, **options):
        process = subprocess.Popen(command, env=self.environment, text=True, **options)
        self.addCleanup(self.end, process)
        return process

    def end(self, process):
        process.kill()
        process.wait(PATIENCE)
        for pipe in filter(None, (process.stdout, process.stderr)):
            pipe.close()

    def run_program(self, *command):
        return subprocess.run(command, env=self.environment, text=True, capture_output=True, timeout=PATIENCE)

    def refusal(self, status, *command):
        """The one line with which a program refuses to work."""
        done = self.run_program(*command)
        self.assertEqual((done.returncode, done.stdout), (status, ""), done.stderr)
        self.assertRegex(done.stderr, r"\A[^\n]+\n\Z")
        return done.stderr

    def orvctl(self, *arguments):
        done = self.run_program(BIN / "orvctl", *arguments)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout

    def machine_file(self, machine):
        path = self.folder / "machine.json"
        unfinished = self.folder / "machine.new"  # renamed: the profiler of an earlier helper may still be reading
        unfinished.write_text(machine if isinstance(machine, str) else json.dumps(machine))
        return unfinished.rename(path)

    def start_helper(self, machine, program=HELPER):
        """Returns when the service has its name."""
        simulation = () if machine is None else ("--simulate", self.machine_file(machine))
        self.launch_helper(program, *simulation)
        self.wait_for_first_end(self.start("gdbus", "wait", "--session", f"--timeout={PATIENCE}", NAME))

    def launch_helper(self, program, *arguments):
        with open(self.folder / "stderr", "w", encoding="utf-8") as complaints:
            self.helper = self.start(program, *arguments, stderr=complaints)

    def wait_for_first_end(self, process):
        """Waits for a process, but not longer than the helper lives."""
        files = [os.pidfd_open(each.pid) for each in (process, self.helper)]
        ended = select.select(files, [], [], PATIENCE)[0]
        for file in files:
            os.close(file)
        self.assertEqual((bool(ended), self.helper.poll()), (True, None), self.complaints())

    def end_helper(self, how=None):
        """The exit status and what was written to standard error."""
        if how:
            self.helper.send_signal(how)
        return self.helper.wait(PATIENCE), self.complaints()

    def complaints(self):
        return (self.folder / "stderr").read_text(encoding="utf-8")

    def processor_seconds(self):
        fields = pathlib.Path(f"/proc/{self.helper.pid}/stat").read_text().rpartition(")")[2].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def helper_rests(self):
        tasks = pathlib.Path(f"/proc/{self.helper.pid}/task").glob("*/stat")
        return all(task.read_text().rpartition(")")[2].split()[0] == "S" for task in tasks)

    def call_command(self, interface, method, *arguments):
        return ("busctl", "--user", "--json=short", f"--timeout={PATIENCE}", "call", NAME, PATH, interface, method,
                *arguments)

    def ask(self, method):
        done = self.run_program(*self.call_command(REQUESTS, method))
        self.assertEqual(done.stderr, "")
        return json.loads(done.stdout)["data"][0]

    def temperatures(self):
        entries = plain(self.ask("getModelDatawithReply")).items()
        return {code: entry["value"] for code, entry in entries if entry["type"] == "temperature"}

    def levels(self):
        return plain(self.ask("getBTDataWithReply"))

    def simulate(self, method, *arguments):
        done = self.run_program(*self.call_command(SIMULATION, method, *arguments))
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def wake(self):
        """Refreshes the readings, then starts the sources' own refreshes."""
        self.simulate("Wake")

    def until(self, condition, pause=0.1):
        """Waits for what tells nobody when it happens."""
        deadline = time.monotonic() + PATIENCE
        while not condition():
            self.assertLess(time.monotonic(), deadline, "waited in vain")
            time.sleep(pause)
