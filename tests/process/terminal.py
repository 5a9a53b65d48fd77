"""A program on a pseudo-terminal, whose screen is read as a person sees it."""

import fcntl
import os
import pty
import select
import struct
import subprocess
import termios
import time

import pyte

from support import PATIENCE


class Terminal:
    """What is written to it is shown at once, whoever waits."""

    def __init__(self, width=80, height=24):
        self.controller, self.device = pty.openpty()
        self.screen = pyte.Screen(width, height)
        self.stream = pyte.ByteStream(self.screen)
        self.written = b""
        self.process = None
        self.resize(width, height)
        self.modes = self.settings()

    def settings(self):
        return termios.tcgetattr(self.device)

    def start(self, *command, environment, **options):
        # A session of its own, whose terminal this is: signals come as they do from a keyboard.
        self.process = subprocess.Popen(
            command, stdin=self.device, stdout=self.device, stderr=self.device, start_new_session=True,
            preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0), env=environment, **options)
        return self.process

    def close(self):
        if self.process:
            self.process.kill()
            self.process.wait(PATIENCE)
        os.close(self.controller)
        os.close(self.device)

    def resize(self, width, height):
        fcntl.ioctl(self.controller, termios.TIOCSWINSZ, struct.pack("HHHH", height, width, 0, 0))
        self.screen.resize(height, width)

    def type(self, keys):
        os.write(self.controller, keys.encode())

    def read(self, patience=0.0):
        """Takes what was written; whether there was anything."""
        if not select.select([self.controller], [], [], patience)[0]:
            return False
        part = os.read(self.controller, 65536)
        self.written += part
        self.stream.feed(part)
        return True

    def lines(self):
        return [line.rstrip() for line in self.screen.display]

    def until(self, condition):
        """Waits until the lines of the screen are as wanted, and returns them."""
        deadline = time.monotonic() + PATIENCE
        while not condition(self.lines()):
            if time.monotonic() > deadline:
                raise AssertionError("waited in vain:\n" + "\n".join(self.lines()))
            self.read(0.1)
        return self.lines()

    def until_shown(self, text):
        return self.until(lambda lines: any(text in line for line in lines))

    def wait(self):
        """The exit status, when all that was written has been read."""
        deadline = time.monotonic() + PATIENCE
        while self.process.poll() is None and time.monotonic() < deadline:
            self.read(0.1)
        while self.read():
            pass
        return self.process.wait(1)
