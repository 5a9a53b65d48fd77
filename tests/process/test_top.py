"""The full-screen view, on a pseudo-terminal."""

import json
import os
import re
import signal
import unittest

from support import BIN, IS_SANITIZED, MACHINES, PATIENCE, ProcessTest, mac, needs_a_terminal, report
from terminal import Terminal

ORVCTL = BIN / "orvctl"
ENTER_SCREEN, LEAVE_SCREEN = b"\x1b[?1049h", b"\x1b[?1049l"


class TopTest(ProcessTest):
    def setUp(self):
        super().setUp()
        self.environment["TERM"] = "xterm-256color"

    def top(self, *arguments, width=80, height=24, environment=None):
        terminal = Terminal(width, height)
        self.addCleanup(terminal.close)
        terminal.start(ORVCTL, "top", *map(str, arguments), environment=self.environment | (environment or {}))
        return terminal

    def recording(self, moments=400):
        """CPU Proximity gets a degree warmer every 10 seconds, from 40 on."""
        path = self.folder / "recording.json"
        steps = [json.dumps({"at": 10 * step, "smc": {"TC0P": f"{40 + step % 60:02x}00"}}) for step in range(1, moments)]
        path.write_text("\n".join([json.dumps(mac()), *steps]) + "\n")
        return path

    def assert_shown_as_drawn_anew(self, terminal, text):
        """What became of many small changes is what one whole drawing shows; the view must be at rest."""
        terminal.until_shown(text)
        while terminal.read(1):
            pass
        before = terminal.lines()
        terminal.screen.erase_in_display(2)
        terminal.type("\x0c")
        terminal.until(lambda lines: lines == before)

    def assert_given_back(self, terminal, status):
        self.assertEqual(terminal.wait(), status)
        self.assertEqual(terminal.settings(), terminal.modes)
        self.assertIn(ENTER_SCREEN, terminal.written)
        self.assertEqual(terminal.written.count(ENTER_SCREEN), terminal.written.count(LEAVE_SCREEN))
        self.assertFalse(terminal.screen.cursor.hidden)

    @needs_a_terminal
    def test_fits_every_size_through_a_storm_of_them(self):
        terminal = self.top("--simulate", MACHINES / "macbookpro-m1.json")
        for width, height in ((40, 10), (300, 100), (41, 11), (200, 60), (20, 4), (80, 24)):
            for step in range(10):
                terminal.resize(width + step % 3, height + step % 2)
            terminal.resize(width, height)
            terminal.type("\x0c")
            lines = terminal.until(lambda lines, wide=width >= 40: lines[0].startswith("MacBook") == wide
                                   and "playing" in lines[1] and "q end" in lines[-1])
        self.assertTrue(any("▸ CPU 17: " in line for line in lines), lines)
        terminal.type("q")
        self.assert_given_back(terminal, 0)

    @needs_a_terminal
    def test_every_end_gives_the_terminal_back(self):
        ends = {"q": 0, "\x03": 0, signal.SIGTERM: 0, signal.SIGHUP: 0, signal.SIGINT: 0}
        if not IS_SANITIZED:  # which handles faults itself
            ends |= {signal.SIGABRT: -signal.SIGABRT, signal.SIGSEGV: -signal.SIGSEGV, signal.SIGQUIT: -signal.SIGQUIT}
        for end, status in ends.items():
            with self.subTest(end=end):
                terminal = self.top("--simulate", MACHINES / "macbookair-m2.json")
                terminal.until_shown("q end")
                self.assertNotEqual(terminal.settings(), terminal.modes)
                terminal.type(end) if isinstance(end, str) else terminal.process.send_signal(end)
                self.assert_given_back(terminal, status)

    @needs_a_terminal
    def test_ends_though_the_terminal_takes_nothing(self):
        terminal = self.top("--simulate", MACHINES / "macbookair-m2.json", width=300, height=100)
        terminal.until_shown("q end")
        os.set_blocking(terminal.controller, False)
        with self.assertRaises(BlockingIOError):
            for _ in range(10**6):  # until it waits to be read from, and reads no more of them
                terminal.type("\x0c" * 64)
        terminal.process.send_signal(signal.SIGTERM)
        self.assertEqual(terminal.process.wait(PATIENCE), 0)
        self.assertEqual(terminal.settings(), terminal.modes)

    @needs_a_terminal
    def test_shell_stops_and_continues_it(self):
        terminal = Terminal()
        self.addCleanup(terminal.close)
        command = f"set -m; {ORVCTL} top --simulate {MACHINES / 'macbookair-m2.json'}; stty -a; echo stopped; fg; echo over"
        terminal.start("bash", "-c", command, environment=self.environment | {"PS1": ""})
        terminal.until_shown("q end")
        terminal.type("\x1a")
        terminal.until(lambda lines: terminal.written.count(ENTER_SCREEN) == 2 and "q end" in lines[-1])
        terminal.type("q")
        terminal.until_shown("over")
        self.assertEqual(terminal.wait(), 0)
        self.assertIn(b" echo ", terminal.written[terminal.written.index(LEAVE_SCREEN):])
        self.assertEqual(terminal.settings(), terminal.modes)
        self.assertEqual(terminal.written.count(LEAVE_SCREEN), 2)

    @needs_a_terminal
    def test_follows_a_service_that_is_killed_and_started_again(self):
        self.start_helper(mac(bluetooth=report(70)))
        terminal = self.top()
        terminal.until_shown("CPU Proximity")
        terminal.until_shown("aa-bb-cc-dd-ee-01")
        self.helper.kill()
        lines = terminal.until(lambda lines: "no service" in lines[0] and "it has ended" in lines[-1])
        row = next(number for number, line in enumerate(lines) if "CPU Proximity" in line)
        self.assertEqual(len({terminal.screen.buffer[row][column].fg for column in range(2, 15)}), 1)
        self.helper.wait(PATIENCE)
        self.start_helper(mac(smc=[{"key": "TC0P", "type": "sp78", "bytes": "3c00"}]))
        terminal.until_shown("60.0 °C")
        terminal.until(lambda lines: "next within" in lines[0])
        self.bus.kill()  # the session has ended
        self.assertEqual(terminal.wait(), 1)
        self.assertEqual(terminal.settings(), terminal.modes)
        self.assertTrue(terminal.written.rstrip().endswith(b"orvctl: the session bus went away"), terminal.written[-200:])
        self.helper = None

    @needs_a_terminal
    def test_recording_is_paused_stepped_and_searched(self):
        terminal = self.top("--simulate", self.recording(), "--at", 100)
        terminal.type(" ")
        terminal.until_shown("paused at 0:01:40 of 1:06:30")
        terminal.until_shown("50.0 °C")
        terminal.type("..")
        terminal.until_shown("51.0 °C")
        terminal.type(">")
        terminal.until_shown("paused at 0:02:50")
        self.assert_shown_as_drawn_anew(terminal, "57.0 °C")
        terminal.type("[")
        terminal.until_shown("paused at 0:00:00")
        terminal.type("5+++++++")
        terminal.until_shown("paused at 0:33:15 of 1:06:30, 200 times as fast")
        terminal.type(" ")
        terminal.until_shown("at the end, 1:06:30")
        terminal.until_shown("at the end, 1:06:30")
        self.assert_shown_as_drawn_anew(terminal, "79.0 °C")
        terminal.type("j/prox\r")
        terminal.until_shown("/prox")
        terminal.type("jje")
        terminal.until_shown("TC0P")
        terminal.type("q")
        terminal.until(lambda lines: "1:06:30" in lines[1] and "/prox" in lines[-1])
        terminal.type("q")
        self.assert_given_back(terminal, 0)

    @needs_a_terminal
    def test_draws_with_what_the_terminal_has(self):
        cases = ((["--ascii"], {}), ([], {"LC_ALL": "C"}), ([], {"NO_COLOR": "1"}), ([], {"TERM": "vt100"}),
                 ([], {"TERM": "linux"}), ([], {"TERM": "xterm"}))
        for arguments, environment in cases:
            with self.subTest(arguments=arguments, environment=environment):
                watch = {"w": {"name": "漢字 e\u0301", "batteryLevel": 8}}
                terminal = self.top("--simulate", self.machine_file(mac(watch=watch)), *arguments, environment=environment)
                terminal.until_shown("CPU Proximity")
                terminal.type("q")
                self.assertEqual(terminal.wait(), 0)
                is_ascii = bool(arguments) or "LC_ALL" in environment
                self.assertEqual(terminal.written.isascii(), is_ascii)
                has_colours = "NO_COLOR" not in environment and environment.get("TERM") != "vt100"
                self.assertEqual(bool(re.search(rb"\x1b\[[0-9;]*(3[0-7]|38;5)[;m]", terminal.written)), has_colours)

    @needs_a_terminal
    def test_wide_names_keep_their_columns(self):
        watch = {"w": {"name": "漢字 e\u0301x", "batteryLevel": 8}}
        terminal = self.top("--simulate", self.machine_file(mac(watch=watch)))
        terminal.until_shown("8 %")
        narrow, wide = (next(row for row, line in enumerate(terminal.lines()) if part in line)
                        for part in ("CPU Proximity", "8 %"))
        cells = terminal.screen.buffer
        end = [max(column for column in range(35) if cells[row][column].data in "C%") for row in (narrow, wide)]
        self.assertEqual(end[0], end[1])

    @needs_a_terminal
    def test_refuses_what_is_no_terminal_in_one_line(self):
        self.assertIn("use orvctl watch", self.refusal(2, ORVCTL, "top"))
        self.assertIn("no-file", self.refusal_on_terminal("--simulate", self.folder / "no-file"))
        for environment, words in (({"TERM": "nonesuch"}, '"nonesuch"'), ({"TERM": "dumb"}, '"dumb"'), ({"TERM": ""}, "TERM")):
            self.assertIn(words, self.refusal_on_terminal(environment=environment))
        for size in ((39, 24), (80, 9)):
            self.assertIn("40 and 10", self.refusal_on_terminal(width=size[0], height=size[1]))

    def refusal_on_terminal(self, *arguments, **options):
        terminal = self.top(*arguments, **options)
        self.assertEqual(terminal.wait(), 2)
        self.assertEqual(terminal.settings(), terminal.modes)
        self.assertRegex(terminal.written, rb"\Aorvctl: [^\n\x1b]+\r\n\Z")
        return terminal.written.decode()


if __name__ == "__main__":
    unittest.main()
