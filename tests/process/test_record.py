"""orvctl record and replay, and the service playing a recording."""

import json
import os
import pty
import random
import resource
import signal
import subprocess
import unittest

import jsonschema

from support import BIN, HELPER, MACHINES, NAME, PATH, PATIENCE, ProcessTest, mac, needs_a_terminal, report

ORVCTL = BIN / "orvctl"
ADDRESS = "AA:BB:CC:DD:EE:01"
RECORDINGS = MACHINES.parent / "recordings"
SCHEMAS = MACHINES.parent / "packaging/schemas"


def steps(*each):
    return "".join(json.dumps(step) + "\n" for step in each)


def lines_of(text):
    return [json.loads(line) for line in text.splitlines()]


def shape(bluetooth):
    """A reply about battery levels without what stand-ins stand for."""
    return sorted(sorted(str(value) for value in entry.values() if not isinstance(value, str)) for entry in bluetooth.values())


def still(machine):
    """A machine whose readings do not step on."""
    machine = json.loads(machine.read_text())
    for row in machine.get("smc", []):
        row["bytes"] = row["bytes"][0] if isinstance(row["bytes"], list) else row["bytes"]
    return json.dumps(machine)


def stepping(**members):
    """Each of its moments is another one."""
    machine = mac(**members)
    machine["smc"][0]["bytes"] = ["2000", "2100"]
    return json.dumps(machine)


def eventful():
    """A day in small: everything that a step can hold, and failing reads."""
    machine = mac(bluetooth=report(80), watch={"watch-1": {"batteryLevel": 60, "name": "Jane's"}, ADDRESS.lower(): {"x": 1}})
    moments = [{"at": at, "smc": {"TC0P": f"{32 + at % 20:02x}80", "TB0T": None if at % 4 else "0000f841"}}
               for at in range(3, 200, 3)]
    moments += [{"at": 20, "bluetooth": report(79), "event": "connect"}, {"at": 41.5, "event": "sleep"},
                {"at": 90.25, "smc": {"F0Ac": "1000", "TA0P": None}, "event": "wake"}, {"at": 100, "watch": None},
                {"at": 110, "bluetooth": None, "event": "pair"}, {"at": 130, "watch": {"w": {"level": 5}}},
                {"at": 150, "bluetooth": "no report", "event": "connect"}, {"at": 200}]
    return json.dumps(machine) + "\n" + steps(*sorted(moments, key=lambda step: step["at"]))


class RecordTest(ProcessTest):
    def file(self, content, name="given.json"):
        path = self.folder / name
        path.write_text(content)
        return path

    def said(self, *arguments):
        """What record says at its end."""
        done = self.run_program(ORVCTL, "record", *arguments)
        self.assertEqual((done.returncode, done.stdout), (0, ""), done.stderr)
        self.assertRegex(done.stderr, r"\A[^\n]+\n\Z")
        return done.stderr

    def replayed(self, path, *arguments):
        return self.orvctl("replay", path, *arguments)

    def test_one_moment_of_a_machine_shows_the_same(self):
        for machine in sorted(MACHINES.glob("*.json")):
            with self.subTest(machine=machine.stem):
                recorded, given = self.folder / "recorded", self.file(still(machine))
                self.assertRegex(self.said("--simulate", given, "-o", recorded, "--force"),
                                 r"\d+ keys with their values, \d+ zeroed, \d+ HID services, \d+ names and addresses")
                for request in "thermal", "bluetooth":
                    both = [self.orvctl(request, "--json", "--simulate", path) for path in (given, recorded)]
                    if request == "bluetooth":
                        both = [shape(json.loads(text)) for text in both]
                    self.assertEqual(*both)

    def test_what_is_recorded_of_a_recording_replays_the_same(self):
        given = self.file(eventful())
        first, second = self.folder / "first", self.folder / "second"
        self.assertIn(f"{first}: ", self.said("--simulate", given, "--for", "200s", "-o", first))
        self.said("--simulate", first, "--for", "200", "-o", second)
        self.assertEqual(self.replayed(first, "--thermal"), self.replayed(given, "--thermal"))
        self.assertEqual(second.read_text(), first.read_text())  # stand-ins stand for themselves
        lines, original = lines_of(self.replayed(first)), lines_of(self.replayed(given))
        self.assertEqual([line["at"] for line in lines], [*range(0, 45, 5), 90.25, *range(95, 201, 5)])
        self.assertEqual([shape(line["bluetooth"]) for line in lines], [shape(line["bluetooth"]) for line in original])
        self.assertNotRegex(first.read_text(), f"(?i)jane|keyboard|{ADDRESS}|{ADDRESS.replace(':', '-')}")
        part = lines_of(self.replayed(given, "--from", "90", "--to", "120", "--bluetooth"))
        self.assertEqual([(line["at"], "thermal" in line) for line in part],
                         [(at, False) for at in (90.25, *range(95, 121, 5))])
        for at, degrees in ((0, 40.0), (5.9, 35.5), (6, 38.5), (200, 50.5)):
            reply = json.loads(self.orvctl("thermal", "--json", "--simulate", given, "--at", str(at)))
            self.assertEqual(reply["TC0P"]["value"], degrees, at)
        self.assertEqual(list(self.temporary.iterdir()), [])

    def test_files_and_lines_follow_their_schemas(self):
        machine, step, replay = (jsonschema.Draft202012Validator(json.loads((SCHEMAS / f"orv.{name}-1.json").read_text()))
                                 for name in ("machine-file", "recording-step", "replay"))
        recorded = self.folder / "recorded"
        self.said("--simulate", self.file(eventful()), "--for", "200s", "-o", recorded)
        for path in *MACHINES.glob("*.json"), *RECORDINGS.iterdir(), self.folder / "given.json", recorded:
            with self.subTest(path=path.name):
                first, end = json.JSONDecoder().raw_decode(path.read_text())
                machine.validate(first)
                for line in filter(None, path.read_text()[end:].splitlines()):
                    step.validate(json.loads(line))
                for line in lines_of(self.replayed(path)):
                    replay.validate(line)
        for wrong in {"smc": {}}, {"at": -1}, {"at": 1, "smc": {"TC0P": "0"}}, {"at": 1, "hid": {"0": "1"}}, {"at": 1, "x": 1}:
            self.assertFalse(step.is_valid(wrong), wrong)
        for wrong in {}, {"sysctl": {"a": 0.5}}, {"sysctl": {}, "smc": [{"key": "five!"}]}, {"format": 2, "sysctl": {}}:
            self.assertFalse(machine.is_valid(wrong), wrong)

    def test_files_are_named_kept_and_replaced_as_asked(self):
        machine = self.machine_file(mac())
        os.chdir(self.temporary)
        self.addCleanup(os.chdir, "/")
        self.said("--simulate", machine)
        named, = self.temporary.iterdir()
        self.assertRegex(named.name, r"\AiMac18,3-\d{4}-\d\d-\d\d\.json\Z")
        self.assertIn("--force", self.refusal(2, ORVCTL, "record", "--simulate", machine))
        named.write_text("older")
        for length in (), ("--for", "10s"):
            self.assertIn("--force", self.refusal(2, ORVCTL, "record", "--simulate", machine, "-o", named, *length))
            self.assertEqual(named.read_text(), "older")
        for length, last in ((), "}"), (("--for", "10s"), '{"at":10}'):
            self.said("--simulate", machine, "-o", named, "--force", *length)
            self.assertEqual(named.read_text().splitlines()[-1], last)
        self.assertEqual([*self.temporary.iterdir()], [named])

    def test_service_plays_a_recording(self):
        asleep = lambda: self.run_program("busctl", "--user", "get-property", NAME, PATH, "org.orv.Sensors1", "Asleep").stdout
        bytes_of = lambda degrees: {"smc": {"TC0P": f"{degrees:02x}00"}}
        given = self.file(json.dumps(mac()) + steps(
            {"at": 50, **bytes_of(50), "event": "sleep"}, {"at": 99, **bytes_of(60)}, {"at": 100, "event": "wake"},
            {"at": 101, **bytes_of(70)}, {"at": 3600, "event": "sleep"}).replace("{", "\n{", 1))
        for moment, degrees, sleeps in ("98.5", 60.0, "b false\n"), ("3600", 70.0, "b true\n"):
            self.launch_helper(HELPER, "--simulate", given, "--from", moment)
            self.wait_for_first_end(self.start("gdbus", "wait", "--session", f"--timeout={PATIENCE}", NAME))
            self.until(lambda: asleep() == sleeps and self.temperatures()["TC0P"] >= degrees)
            self.end_helper(signal.SIGTERM)

    def test_bad_input_is_one_line_and_a_status(self):
        machine = json.dumps(mac()) + "\n"
        given = self.file(machine + steps({"at": 5}))
        record, replay = (ORVCTL, "record", "--simulate", given, "-o", "-"), (ORVCTL, "replay")
        for option in "--for", "--every":
            for time in "0", "-5", "-1s", "0s", "x", "", "5x", "1e9", "nan", "99999999999999", "0x10":
                with self.subTest(option=option, time=time):
                    self.assertIn(option, self.refusal(2, *record, f"{option}={time}"))
        self.assertIn("ends 5 seconds", self.refusal(2, *replay, given, "--from", "5.1"))
        self.assertIn("ends 5 seconds", self.refusal(2, ORVCTL, "thermal", "--simulate", given, "--at", "6"))
        self.refusal(2, HELPER, "--simulate", given, "--from", "6")
        for seconds in "-1", "x", "nan", "inf", "1e300":
            for command in ((*replay, given, "--from"), (*replay, given, "--to"),
                            (ORVCTL, "thermal", "--simulate", given, "--at"), (HELPER, "--simulate", given, "--from")):
                with self.subTest(command=command, seconds=seconds):
                    self.refusal(2, *command, seconds)
        self.refusal(2, *replay, given, "--thermal", "--bluetooth")
        self.refusal(1, *record[:-1], self.folder / "no such folder" / "file")
        self.refusal(2, *record[:-1], self.folder)  # there already
        self.refusal(1, *record[:-1], self.folder, "--force")
        for step, words in {
            '{"at": 4}\n{"at": 3}': "line 3: at: before", '{"at": 5, "smc": {"TG0P": "00"}}': "line 2: smc.TG0P",
            '{"at": 5, "hid": {"0": 5}}': "line 2: hid.0", '{"at": 5, "other": 1}': "line 2: other",
            "not JSON\n": "line 2: ", '{"at": 5}{': "line 2: ", '{"at": 5, "smc": {"TC0P": "' + "00" * 50_000_000: "too long",
        }.items():
            path = self.file(machine + step + "\n", "bad")
            for command in ((*replay, path), (*record[:3], path, "-o", "-"), (HELPER, "--simulate", path),
                            (ORVCTL, "explain", "--simulate", path)):
                with self.subTest(step=step[:40], command=command[0].name + command[1]):
                    self.assertIn(words, self.refusal(2, *command))
        self.assertIn("newer", self.refusal(2, *replay, self.file('{"format": 2, "sysctl": {}}')))

    def test_cut_file_is_used_up_to_its_last_whole_line(self):
        whole = eventful()
        beginning, first = whole.index("\n") + 1, lines_of(self.replayed(self.file(whole)))
        randomly = random.Random(14)
        for size in (beginning, *(randomly.randrange(beginning + 1, len(whole) - 1) for _ in range(12))):
            with self.subTest(size=size):
                done = self.run_program(ORVCTL, "replay", self.file(whole[:size]))
                is_whole = whole[size - 1] == "\n" or whole[size] == "\n"
                self.assertEqual((done.returncode, done.stderr.count("\n")), (0, 0 if is_whole else 1), done.stderr)
                self.assertIn("" if is_whole else "was cut off", done.stderr)
                shown = lines_of(done.stdout)[:-1]  # the last one is after the end
                self.assertEqual(shown, first[:len(shown)])

    def limited(self, size, *command):
        """Where no file may become larger, which is how a full disk looks to who writes."""
        return subprocess.run(command, env=self.environment, text=True, capture_output=True, timeout=PATIENCE,
                              restore_signals=False,  # as after a shell's `trap '' XFSZ`
                              preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size)))

    def test_full_disk_leaves_what_was_recorded(self):
        given = self.file(eventful())
        target = self.temporary / "file"
        for length, kept in ((), False), (("--for", "200s"), True):
            size = 1000 if kept else 100
            done = self.limited(size, ORVCTL, "record", "--simulate", given, "-o", target, *length)
            self.assertEqual((done.returncode, done.stderr), (1, f"orvctl: {target}: File too large\n"))
            self.assertEqual(target.exists(), kept)
        self.assertTrue(target.read_text().endswith("}\n"))
        self.assertEqual(self.run_program(ORVCTL, "replay", target).stderr, "")
        with open("/dev/full", "w") as full:
            done = subprocess.run([ORVCTL, "record", "--simulate", given, "-o", "-"], env=self.environment, stdout=full,
                                  stderr=subprocess.PIPE, text=True, timeout=PATIENCE)
        self.assertEqual((done.returncode, done.stderr), (1, "orvctl: cannot write: No space left on device\n"))

    def test_reader_that_goes_away_ends_it(self):
        given = self.file(stepping())
        for command in (("record", "--simulate", given, "--for", "30000h", "-o", "-"), ("replay", given, "--to", "1e9")):
            with self.subTest(command=command[0]):
                process = self.start(ORVCTL, *command, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
                self.assertTrue(process.stdout.readline())
                process.stdout.close()
                self.assertEqual((process.wait(PATIENCE), process.stderr.read()), (1, "orvctl: cannot write: Broken pipe\n"))

    def test_interrupted_recording_is_whole(self):
        given = self.file(stepping(watch={"watch-1": {"batteryLevel": 60}}))
        for sent in signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGQUIT:
            target = self.temporary / sent.name
            process = self.start(ORVCTL, "record", "--simulate", given, "--for", "30000h", "-o", target,
                                 stderr=subprocess.PIPE, preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_DFL))
            self.until(lambda: target.exists() and target.stat().st_size > 5000)
            process.send_signal(sent)
            quits = sent == signal.SIGQUIT
            self.assertEqual(process.wait(PATIENCE), -sent if quits else 0)
            self.assertIn("" if quits else "later moments", process.stderr.read())
            self.assertGreater(lines_of(target.read_text().partition("\n}\n")[2])[-1]["at"], 0)
            self.assertTrue(self.replayed(target, "--to", "5"))
        self.assertEqual(list(self.temporary.glob("orv-smc-helper-*")), [])

    @needs_a_terminal
    def test_progress_is_for_a_terminal_and_goes(self):
        controller, terminal = pty.openpty()
        process = self.start(ORVCTL, "record", "--simulate", self.file(stepping()), "--for", "30000h", "-o",
                             self.temporary / "file", stderr=terminal)
        os.close(terminal)
        shown = b""
        try:
            while piece := os.read(controller, 4096):
                if shown.count(b"%") < 2 <= (shown + piece).count(b"%"):
                    process.send_signal(signal.SIGINT)
                shown += piece
        except OSError:  # how the end of a terminal reads
            pass
        os.close(controller)
        self.assertEqual(process.wait(PATIENCE), 0)
        *lines, last = shown.decode().split("\r\x1b[K")
        self.assertRegex(lines[1], r"\A\d+:\d\d:\d\d of 30000:00:00 \(0 %\)\Z")
        self.assertRegex(last, r"\Aorvctl: [^\r\n]* later moments\r\n\Z")


if __name__ == "__main__":
    unittest.main()
