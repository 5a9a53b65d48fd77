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


class Screen(pyte.Screen):
    """With what the library lacks of today's terminals: repeated characters, tabulators to the left, scrolling."""

    last = " "

    def draw(self, data):
        super().draw(data)
        self.last = data[-1]

    def repeat(self, count=1):
        super().draw(self.last * (count or 1))

    def back_tab(self, count=1):
        for _ in range(count or 1):
            self.cursor.x = max((stop for stop in self.tabstops if stop < self.cursor.x), default=0)

    def scroll_up(self, count=1):
        self.scroll(count, self.index, (self.margins or pyte.screens.Margins(0, self.lines - 1)).bottom)

    def scroll_down(self, count=1):
        self.scroll(count, self.reverse_index, (self.margins or pyte.screens.Margins(0, self.lines - 1)).top)

    def scroll(self, count, step, edge):
        before, self.cursor.y = self.cursor.y, edge
        for _ in range(count or 1):
            step()
        self.cursor.y = before


class Stream(pyte.ByteStream):
    csi = pyte.ByteStream.csi | {"b": "repeat", "Z": "back_tab", "S": "scroll_up", "T": "scroll_down"}
    events = pyte.ByteStream.events | set(csi.values())


class Terminal:
    """What is written to it is shown at once, whoever waits."""

    def __init__(self, width=80, height=24):
        self.controller, self.device = pty.openpty()
        self.screen = Screen(width, height)
        self.stream = Stream(self.screen)
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
