"""The profiler as a real child."""

import contextlib
import json
import os
import pathlib
import shutil
import signal
import unittest

from support import HELPER, ProcessTest, device, mac, report


class ProfilerTest(ProcessTest):
    def setUp(self):
        super().setUp()
        self.profiler = self.folder / "libexec/orv/system_profiler"
        self.profiler.parent.mkdir(parents=True)
        (self.folder / "bin").mkdir()
        self.program = shutil.copy(HELPER, self.folder / "bin")
        self.runs = self.folder / "runs"
        self.runs.touch()
        self.large_report = self.folder / "report"
        self.environment |= {"ORV_TEST_RUNS": str(self.runs), "ORV_TEST_GATE": str(self.folder / "gate")}
        # Opened for both, so that neither side ever waits for the other to open it.
        os.mkfifo(self.folder / "gate")
        self.gate = os.open(self.folder / "gate", os.O_RDWR)
        self.addCleanup(os.close, self.gate)

    def start_with_profiler(self, script, mode=0o755):
        self.write_profiler(script, mode)
        self.start_helper(mac(), self.program)

    def write_profiler(self, script, mode=0o755):
        unfinished = self.profiler.with_name("new")
        unfinished.write_text(f'#!/bin/sh\necho run >> "$ORV_TEST_RUNS"\n{script}\n')
        unfinished.chmod(mode)
        unfinished.rename(self.profiler)

    def run_count(self):
        return len(self.runs.read_text().splitlines())

    def connect(self):
        self.simulate("ConnectBluetoothDevice")

    def fresh_levels(self):
        self.wake()
        return self.levels()

    def children(self):
        found = []
        for task in pathlib.Path(f"/proc/{self.helper.pid}/task").iterdir():
            with contextlib.suppress(OSError):  # a thread that ends meanwhile
                found += (task / "children").read_text().split()
        return found

    def test_child_has_the_environment_and_nothing_else_of_the_helper(self):
        found = self.folder / "found"
        self.start_with_profiler(f"""
            found=$(readlink /proc/self/fd/0; grep SigBlk /proc/self/status; ls /proc/self/fd | tr '\\n' ' ')
            echo "$* $found" > '{found}.new'; mv '{found}.new' '{found}'""")
        self.until(found.exists)
        lines = found.read_text().split()
        self.assertEqual(lines, ["SPBluetoothDataType", "-json", "--simulate", *str(self.folder / "machine.json").split(), "--at", "0", "/dev/null", "SigBlk:",
                                 "0" * 16, *"0123"])

    def test_reading_is_what_the_child_has_printed_when_it_ends(self):
        good, bad = json.dumps(report(70)), json.dumps(report(70))[:-20]
        large = self.folder / "large.json"
        large.write_text(json.dumps({"": "x" * 5_000_000, **report(5)}))
        self.start_with_profiler(f"echo '{good}'")
        for name, script, expected in (
                ("nothing", "", {}),
                ("failure after its report", f"echo '{good}'; exit 3", device(70)),
                ("half a document", f"echo '{bad}'", {}),
                ("5 MB", f"cat '{large}'", device(5)),
                ("killed", f"echo '{bad}'; kill -KILL $$", {})):
            with self.subTest(name):
                self.write_profiler(script)
                self.until(lambda: self.fresh_levels() == expected)

    def test_closed_output_is_not_the_end_of_the_child(self):
        self.start_with_profiler(f"echo '{json.dumps(report(70))}'; exec >&-; read line < $ORV_TEST_GATE")
        self.until(lambda: self.run_count() == 1)
        self.assertEqual(self.fresh_levels(), {})
        os.write(self.gate, b"\n")
        self.until(lambda: self.fresh_levels() == device(70))
        self.bus.kill()  # with a child that has not ended: it must not keep the helper alive
        self.assertEqual(self.end_helper(), (1, "orv-smc-helper: the session bus went away\n"))

    def test_burst_of_events_starts_one_child(self):
        self.start_with_profiler("read line < $ORV_TEST_GATE")
        for runs in (1, 2):
            self.until(lambda: self.connect() or self.run_count() == runs)
            for _ in range(10):
                self.connect()
                self.simulate("ChangePairing")
            self.assertEqual((self.run_count(), len(self.children())), (runs, 1))
            os.write(self.gate, b"\n")

    def test_child_that_cannot_start_ends_the_refreshing_in_silence(self):
        for mode in (0o644, None):
            with self.subTest(mode=mode):
                self.runs.write_text("")
                self.write_profiler("", mode or 0o755)
                if mode is None:
                    self.profiler.unlink()
                self.start_helper(mac(), self.program)
                self.connect()
                self.write_profiler("")
                for _ in range(5):
                    self.connect()
                    self.assertEqual(self.fresh_levels(), {})
                self.assertEqual((self.run_count(), self.children()), (0, []))
                self.assertEqual(self.end_helper(signal.SIGTERM), (-signal.SIGTERM, ""))

    def test_many_children_leave_neither_descriptor_nor_zombie(self):
        self.start_with_profiler(f"echo '{json.dumps(report(70))}'")
        files = f"/proc/{self.helper.pid}/fd"
        self.until(lambda: not self.children() and self.run_count() == 1)
        most = len(os.listdir(files))  # the report may still be read
        for runs in range(2, 42):
            self.until(lambda: self.connect() or self.run_count() >= runs, pause=0.02)
        self.until(lambda: not self.children() and len(os.listdir(files)) <= most)


if __name__ == "__main__":
    unittest.main()
