"""orvctl plot: a recording and a csv become one picture, which is valid SVG; whatever cannot be drawn is refused in one line."""

import json
import pathlib
import subprocess
import unittest
from xml.etree import ElementTree

from support import BIN, MACHINES, ProcessTest, mac, report

ORVCTL = BIN / "orvctl"
SVG = "{http://www.w3.org/2000/svg}"
DTD = pathlib.Path("/usr/share/xml/w3c-sgml-lib/schema/dtd/REC-SVG11-20110816/svg11.dtd")


def recording():
    """Five minutes, of which one is slept away."""
    steps = [{"at": at, "smc": {"TC0P": f"{32 + at % 20:02x}80"}} for at in range(5, 301, 5) if not 120 <= at < 180]
    steps += [{"at": 120, "event": "sleep"}, {"at": 180, "event": "wake"}]
    return "".join(json.dumps(line) + "\n" for line in [mac(bluetooth=report(80)), *sorted(steps, key=lambda step: step["at"])])


class Plot(ProcessTest):
    def drawn(self, *arguments):
        """The picture's root, once it was found valid."""
        picture = self.orvctl("plot", *arguments, "-o", "-")
        checked = subprocess.run(["xmllint", "--noout", "--nonet", "--dtdvalid", DTD, "-"], input=picture, text=True,
                                 capture_output=True)
        self.assertEqual((checked.returncode, checked.stderr), (0, ""))
        return ElementTree.fromstring(picture)

    def texts(self, root, kind):
        return [text.text for text in root.iter(SVG + "text") if kind in text.get("class").split()]

    def file(self, name, text):
        path = self.folder / name
        path.write_text(text, newline="")
        return path

    def test_recording_is_drawn_with_its_sleep_and_what_was_chosen(self):
        path = self.file("mac.json", recording())
        root = self.drawn(path)
        self.assertEqual(root.find(SVG + "title").text, "iMac18,3")
        self.assertEqual(self.texts(root, "caption"), ["Temperatures in °C", "Fans in revolutions per minute"])
        self.assertEqual(self.texts(root, "name"), ["CPU Proximity", "Ambient 1", "Left Side"])
        sleeps = [rect for rect in root.iter(SVG + "rect") if rect.get("class") == "sleep"]
        self.assertEqual([(rect.get("x"), rect.get("width")) for rect in sleeps], [("352", "144")] * 2)
        line = next(group.find(SVG + "path").get("d") for group in root.iter(SVG + "g")
                    if "TC0P" in group.find(SVG + "title").text)
        self.assertEqual(line.count("M"), 2)
        part = self.drawn(path, "--only", "aa-bb-cc-dd-ee-01", "--from", "1m", "--to", "90")
        self.assertEqual((self.texts(part, "caption"), self.texts(part, "name")),
                         (["Battery levels in %"], ["Main aa-bb-cc-dd-ee-01"]))
        self.assertIn("1:00 min", self.texts(part, "label"))

    def test_watch_and_recording_look_alike(self):
        replayed = self.run_program(ORVCTL, "replay", self.file("mac.json", recording()), "--thermal")
        rows = [json.loads(line) for line in replayed.stdout.splitlines()]
        csv = "time,TC0P CPU Proximity [celsius]\r\n" + "".join(
            f"2026-11-21T22:{row['at'] // 60:02}:{row['at'] % 60:02}.000Z,{row['thermal']['TC0P']['value']}\r\n" for row in rows)
        lines = [next(self.drawn(path, "--only", "TC0P").iter(SVG + "g")).find(SVG + "path").get("d")
                 for path in (self.folder / "mac.json", self.file("mac.csv", csv))]
        self.assertEqual(*lines)

    def test_file_that_is_there_is_replaced_only_by_force(self):
        path, picture = self.file("mac.json", recording()), self.file("mac.svg", "mine")
        self.assertIn("--force", self.refusal(2, ORVCTL, "plot", path, "-o", picture))
        self.assertEqual(picture.read_text(), "mine")
        self.orvctl("plot", path, "-o", picture, "--force")
        self.assertIn("</svg>", picture.read_text())

    def test_what_cannot_be_drawn_is_refused(self):
        path = self.file("mac.json", recording())
        plot = (ORVCTL, "plot")
        for status, says, arguments in (
                (2, "holds one moment", (MACHINES / "macbookpro-m1.json",)), (2, "No such file", (self.folder / "none",)),
                (2, "not JSON", (self.file("other", "hello\n"),)), (2, "no two rows", (self.file("empty.csv", "time\r\n"),)),
                (2, "ends 300 seconds after", (path, "--from", "1h")), (2, "--to", (path, "--to", "soon")),
                (2, "knows no time of day", (path, "--from", "2026-11-21T22:10Z"))):
            self.assertIn(says, self.refusal(status, *plot, *arguments, "-o", "-"))
        self.assertIn("--output", self.refusal(2, *plot, path))
        done = self.run_program(*plot, path, "--only", "TX9X", "-o", "-")
        self.assertEqual((done.returncode, done.stdout, done.stderr.count("\n")), (1, "", 2))


if __name__ == "__main__":
    unittest.main()
