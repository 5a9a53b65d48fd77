"""A virtual computer: boots the image in QEMU, runs commands in it over ssh, puts it to sleep and wakes it.

Every wait is bounded. The bounds are for an emulated processor of which half is another's."""

import json
import os
import pathlib
import socket
import subprocess
import time

PATIENCE = 180  # seconds for a command
BOOT = 420      # seconds to the first login
MEMORY = 1024   # MiB


def accelerator():
    """ORV_VM_ACCEL, or the processor's own virtual ones where it has and shows them, or emulated ones."""
    shows = {"vmx", "svm"} & set(pathlib.Path("/proc/cpuinfo").read_text().split())
    usable = shows and os.access("/dev/kvm", os.R_OK | os.W_OK)
    return os.environ.get("ORV_VM_ACCEL") or ("kvm" if usable else "tcg")


class Failed(AssertionError):
    """A command that ended otherwise than it should."""


class Machine:
    def __init__(self, image, disk, log):
        self.image = pathlib.Path(image)
        self.port = free_port()
        self.monitor_path = disk.with_suffix(".monitor")
        self.qemu = subprocess.Popen(
            ["qemu-system-x86_64", "-accel", accelerator(), "-machine", "pc", "-global", "PIIX4_PM.disable_s3=0",
             "-cpu", "host" if accelerator() == "kvm" else "max", "-smp", "2", "-m", str(MEMORY),
             "-kernel", self.image / "vmlinuz", "-initrd", self.image / "initrd.img",
             "-append", "root=/dev/vda rw console=ttyS0 quiet mitigations=off",
             "-drive", f"file={disk},if=virtio,cache=unsafe",
             "-netdev", f"user,id=net,restrict=on,hostfwd=tcp:127.0.0.1:{self.port}-:22",
             "-device", "virtio-net-pci,netdev=net,romfile=", "-device", "virtio-rng-pci",
             "-qmp", f"unix:{self.monitor_path},server=on,wait=off",
             "-display", "none", "-serial", f"file:{log}"],
            stdin=subprocess.DEVNULL, preexec_fn=lambda: os.nice(5))
        self.log = log
        self.monitor = None

    def until_booted(self):
        self.monitor = Monitor(self.monitor_path)
        self.until(lambda: self.ssh("root", "true").returncode == 0, "the first login", BOOT, pause=1)
        self.run("systemctl is-system-running --wait || true")

    def command(self, user, command):
        if self.qemu.poll() is not None:
            raise Failed(f"QEMU has ended; its console is {self.log}")
        options = ["BatchMode=yes", "StrictHostKeyChecking=no", "UserKnownHostsFile=/dev/null", "LogLevel=ERROR",
                   f"ConnectTimeout={PATIENCE}"]
        arguments = [part for option in options for part in ("-o", option)]
        return ["ssh", "-p", str(self.port), "-i", self.image / "key", *arguments, f"{user}@127.0.0.1", command]

    def ssh(self, user, command):
        return subprocess.run(self.command(user, command), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, timeout=PATIENCE)

    def run(self, command, user="root", status=0):
        """What the command prints, both outputs as one, in a login of its own."""
        done = self.ssh(user, command)
        if status not in (None, done.returncode):
            raise Failed(f"{user}: {command}\nended with {done.returncode}: {done.stdout}")
        return done.stdout.strip()

    def start(self, command, user):
        return subprocess.Popen(self.command(user, f"{{ {command}\n}} 2>&1"), stdin=subprocess.PIPE,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)

    def put(self, path, content, mode="0644"):
        """Makes a file of these bytes."""
        subprocess.run(self.command("root", f"mkdir -p {os.path.dirname(path)} && cat >{path} && chmod {mode} {path}"),
                       check=True, input=content, timeout=PATIENCE)

    def sleep(self, command, seconds):
        """Puts the computer to sleep and wakes it so long after it has fallen asleep."""
        self.monitor.events.clear()
        request = self.start(command, "root")
        self.monitor.until_event("SUSPEND")
        time.sleep(seconds)
        self.monitor.command("system_wakeup")
        self.monitor.until_event("WAKEUP")
        request.communicate(timeout=PATIENCE)
        self.until(lambda: self.ssh("root", "true").returncode == 0, "an answer after the wake")

    def until(self, condition, what, patience=PATIENCE, pause=0.5):
        deadline = time.monotonic() + patience
        while True:
            try:
                if outcome := condition():
                    return outcome
            except subprocess.TimeoutExpired:
                pass
            if time.monotonic() > deadline:
                raise Failed(f"waited {patience} seconds in vain for {what}")
            time.sleep(pause)

    def off(self):
        try:
            if self.monitor:
                self.monitor.command("quit")
            self.qemu.wait(20 if self.monitor else 0)
        except (OSError, ValueError, subprocess.TimeoutExpired):  # it has ended, or does not answer
            self.qemu.kill()
            self.qemu.wait()


class Monitor:
    """QEMU's monitor: commands, and the events that it told of meanwhile."""

    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.settimeout(PATIENCE)
        deadline = time.monotonic() + PATIENCE
        while self.socket.connect_ex(str(path)) != 0 and time.monotonic() < deadline:
            time.sleep(0.1)
        self.lines = self.socket.makefile("r")
        self.lines.readline()
        self.events = []
        self.command("qmp_capabilities")

    def command(self, name):
        self.socket.sendall(json.dumps({"execute": name}).encode() + b"\n")
        self.read(lambda message: "return" in message or "error" in message)

    def until_event(self, name):
        if name not in self.events:
            self.read(lambda message: message.get("event") == name)

    def read(self, is_last):
        while True:
            message = json.loads(self.lines.readline())
            if "event" in message:
                self.events.append(message["event"])
            if is_last(message):
                return


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]
