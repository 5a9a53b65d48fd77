"""orvctl metrics, as those read it who collect metrics."""

import os
import pathlib
import signal
import subprocess
import tempfile
import unittest

import prometheus_client.openmetrics.parser
import prometheus_client.parser

from support import BIN, MACHINES, PATIENCE, ProcessTest, mac, report

READERS = (prometheus_client.parser.text_string_to_metric_families,
           prometheus_client.openmetrics.parser.text_string_to_metric_families)
NASTY = 'Jo\'s "watch" \\ {a="b"}\nand {its} strap, 5°'


def series(text):
    """What each reader finds, which is the same: (name, labels) to value."""
    found = []
    for read in READERS:
        families = list(read(text))
        assert {family.type for family in families} == {"gauge"}, families
        samples = [sample for family in families for sample in family.samples]
        assert all(sample.timestamp is None for sample in samples)
        found.append({(sample.name, *sorted(sample.labels.items())): sample.value for sample in samples})
        assert len(found[-1]) == len(samples)
    assert found[0] == found[1]
    assert text.endswith("# EOF\n")
    return found[0]


def names(text):
    return {each[0] for each in series(text)}


class MetricsTest(ProcessTest):
    def setUp(self):
        super().setUp()
        self.output = self.folder / "out"
        self.output.mkdir()
        self.file = self.output / "orv.prom"

    def metrics(self, *arguments):
        return self.orvctl("metrics", *arguments)

    def start_writing(self, prefix=(), **options):
        return self.start(*prefix, BIN / "orvctl", "metrics", "-o", self.file, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, **options)

    def test_every_machine_is_read_by_both_readers(self):
        for machine in sorted(MACHINES.glob("*.json")):
            with self.subTest(machine=machine.name):
                found = series(self.metrics("--simulate", machine))
                self.assertGreater(len(found), 20)

    def test_service_is_told_with_its_times_and_without_addresses(self):
        self.start_helper(mac(bluetooth=report(70), watch={NASTY: {"batteryLevel": 80}}))
        self.until(lambda: len(self.levels()) == 2)
        with_times = {"orv_build_info", "orv_temperature_celsius", "orv_fan_rpm", "orv_fan_min_rpm", "orv_fan_max_rpm",
                      "orv_bluetooth_battery_ratio", "orv_last_refresh_timestamp_seconds"}
        plain = self.metrics()
        self.assertEqual(names(plain), with_times)
        self.assertNotRegex(plain, "aa-bb|strap")
        self.assertIn("+Inf", plain)
        self.assertEqual(self.metrics("--simulate", self.folder / "machine.json", "--addresses").count("device="), 2)
        addressed = series(self.metrics("--addresses"))
        self.assertEqual(addressed[("orv_bluetooth_battery_ratio", ("device", NASTY), ("part", "main"))], 0.8)
        self.assertEqual(addressed[("orv_bluetooth_battery_ratio", ("device", "aa-bb-cc-dd-ee-01"), ("part", "main"))], 0.7)
        self.addCleanup(os.umask, os.umask(0o077))
        self.environment["LC_ALL"] = "de_DE.UTF-8"  # where a locale of that name is installed, it has a decimal comma
        self.assertEqual(self.metrics("-o", self.file), "")
        self.assertEqual((self.file.stat().st_mode & 0o777, names(self.file.read_text())), (0o644, with_times))
        self.assertEqual(self.metrics("-o", "-").splitlines()[0], plain.splitlines()[0])

    def test_silent_ended_and_restarted_service(self):
        alone = self.metrics("--simulate", self.machine_file({**mac(), "smc": []}))
        self.start_helper(mac())
        self.metrics("-o", self.file)
        before = self.file.read_text()
        self.helper.send_signal(signal.SIGSTOP)
        writer, checker = self.start_writing(), self.start(BIN / "orvctl", "check", stdout=subprocess.PIPE)
        self.assertEqual(self.file.read_text(), before)  # until it has given up
        printed = self.refusal(1, BIN / "orvctl", "metrics")
        self.assertEqual(writer.communicate(timeout=PATIENCE), ("", printed))
        self.assertRegex(checker.communicate(timeout=PATIENCE)[0], "^ORV UNKNOWN - .*does not answer\n$")
        self.assertEqual((writer.returncode, checker.returncode, self.file.read_text()), (1, 3, alone))
        self.helper.kill()
        self.helper.wait(PATIENCE)
        self.refusal(1, BIN / "orvctl", "metrics", "-o", self.file)
        self.assertEqual(self.file.read_text(), alone)
        self.start_helper(mac())
        self.metrics("-o", self.file)
        self.assertEqual(names(self.file.read_text()), names(before))
        self.assertEqual(list(self.output.iterdir()), [self.file])

    def test_output_that_cannot_be_written_leaves_the_old_file(self):
        simulated = ("metrics", "--simulate", self.machine_file(mac()))
        self.orvctl(*simulated, "-o", self.file)
        before = self.file.read_bytes()
        full = ("prlimit", "--fsize=100", "env", "--ignore-signal=XFSZ")
        folder = pathlib.Path(tempfile.mkdtemp(dir=self.folder))
        folder.chmod(0o555)
        # Who may do everything gives that up.
        unprivileged = ("setpriv", "--bounding-set=-dac_override,-dac_read_search") if os.geteuid() == 0 else ()
        read_only = folder / "orv.prom"
        for prefix, path, why in ((full, self.file, "File too large"), (unprivileged, read_only, "Permission denied"),
                                  ((), self.output, "directory"), ((), "/dev/full", "No space left"),
                                  ((), self.output / "none/orv.prom", "No such file"), ((), "", "No such file")):
            with self.subTest(why=why):
                complaint = self.refusal(1, *prefix, BIN / "orvctl", *simulated, "-o", path)
                self.assertIn(why, complaint)
        # Of a service that is missing and a file that cannot be written one line says both.
        self.assertRegex(self.refusal(1, *full, BIN / "orvctl", "metrics", "-o", self.file), "asked.*; .*too large")
        self.refusal(2, BIN / "orvctl", "metrics", "--simulate", "/nonexistent", "-o", self.file)
        self.assertEqual((self.file.read_bytes(), list(self.output.iterdir()), list(folder.iterdir())),
                         (before, [self.file], []))
        link = self.output / "link"
        link.symlink_to(self.file)
        self.orvctl(*simulated, "-o", link)
        self.assertTrue(link.is_symlink())

    def test_writers_of_one_file_never_show_a_part(self):
        simulated = " ".join(f"'{each}'" for each in (BIN / "orvctl", "metrics", "--simulate", self.machine_file(mac()),
                                                      "-o", self.file))
        writers = [self.start("sh", "-c", f"for i in 1 2 3 4 5 6 7 8 9 10; do {simulated} || exit 1; done")
                   for _ in range(3)]
        self.until(self.file.exists, pause=0.01)
        whole = self.file.read_text()
        while any(writer.poll() is None for writer in writers):
            self.assertEqual(self.file.read_text(), whole)
        self.assertEqual([writer.wait() for writer in writers], [0, 0, 0])
        series(whole)
        self.assertEqual(list(self.output.iterdir()), [self.file])


if __name__ == "__main__":
    unittest.main()
