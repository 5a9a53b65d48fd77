"""One simulated Mac of the fleet: its bus, its helper, what writes its textfile, and its node exporter."""

import os
import pathlib
import signal
import socket
import subprocess
import time

BIN = pathlib.Path(os.environ["ORV_BIN"])
NAME = "org.orv.SMCHelper"
PATH = "/" + NAME.replace(".", "/")
PAUSE = 5  # seconds between two writings


def free_port():
    with socket.socket() as listener:
        listener.bind(("127.0.0.1", 0))
        return listener.getsockname()[1]


class Mac:
    def __init__(self, name, machine, folder):
        self.name, self.machine, self.folder = name, machine, folder / name
        self.textfiles = self.folder / "textfiles"
        self.textfiles.mkdir(parents=True)
        self.file = self.textfiles / "orv.prom"
        self.processes = []
        bus = self.start("dbus-daemon", "--session", "--nofork", "--print-address", stdout=subprocess.PIPE, text=True)
        self.environment = {**os.environ, "DBUS_SESSION_BUS_ADDRESS": bus.stdout.readline().strip(),
                            "TMPDIR": str(self.folder)}
        self.start_helper()
        self.writer = self.start("sh", "-c", f"while :; do '{BIN}/orvctl' metrics -o orv.prom; sleep {PAUSE}; done",
                                 cwd=self.textfiles, env=self.environment, start_new_session=True)
        self.port = free_port()
        self.start("prometheus-node-exporter", f"--web.listen-address=127.0.0.1:{self.port}",
                   "--collector.disable-defaults", "--collector.textfile",
                   f"--collector.textfile.directory={self.textfiles}")

    def start(self, *command, **options):
        process = subprocess.Popen(command, **{"stderr": subprocess.DEVNULL, **options})
        self.processes.append(process)
        return process

    def start_helper(self):
        self.helper = self.start(BIN / "orv-smc-helper", "--simulate", self.machine, env=self.environment)

    def simulate(self, method, *arguments):
        subprocess.run(["busctl", "--user", "--timeout=30", "call", NAME, PATH, "org.orv.SimulatedMac", method, *arguments],
                       env=self.environment, check=True, stdout=subprocess.DEVNULL)

    def set(self, method, key, number):
        self.simulate(method, "sd", key, str(number))

    def end_helper(self):
        self.helper.kill()
        self.helper.wait()

    def signal_writer(self, number):
        os.killpg(self.writer.pid, number)

    def end(self):
        self.signal_writer(signal.SIGKILL)
        for process in self.processes:
            process.kill()
        for process in self.processes:
            process.wait()


def start_fleet(count, machines, folder):
    """The Macs, each of which has written its file once."""
    fleet = []
    try:
        for number in range(count):
            fleet.append(Mac(f"mac-{number + 1:02}", machines[number % len(machines)], folder))
        deadline = time.monotonic() + 60
        while not all(mac.file.exists() and "orv_temperature_celsius" in mac.file.read_text() for mac in fleet):
            if time.monotonic() > deadline:
                raise RuntimeError("not every Mac has written its file")
            time.sleep(0.2)
        return fleet
    except BaseException:
        end_fleet(fleet)
        raise


def end_fleet(fleet):
    for mac in fleet:
        mac.end()
