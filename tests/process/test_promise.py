"""What docs/promise.md promises: compared with what was kept of it in tests/promise.

`test_promise.py --keep` adds what is new, at a release; it replaces nothing that does not hold.
"""

import json
import pathlib
import re
import sys
import unittest
import xml.etree.ElementTree

import jsonschema

from support import MACHINES, ProcessTest

ROOT = MACHINES.parent
KEPT = ROOT / "tests/promise"
PACKAGING = ROOT / "packaging"
READ_BY_US = "orv.machine-file-1.json", "orv.recording-step-1.json"
# What a schema says to people, or of itself.
REMARKS = "description", "title", "$id", "$schema"


def differences(kept, now, is_read, path=""):
    """Where a schema no longer says what it said: members may be added, and words where one of several is meant."""
    if isinstance(kept, dict) and isinstance(now, dict):
        for member, content in kept.items():
            if member not in REMARKS or path.endswith("/properties"):
                yield from differences(content, now[member], is_read, f"{path}/{member}") if member in now else [f"{path}/{member}"]
    elif isinstance(kept, list) and isinstance(now, list):
        gone, new = ([each for each in one if each not in other] for one, other in ((kept, now), (now, kept)))
        if path.endswith("/required"):  # a file that was enough once still is; what is written has at least what it had
            faults = new if is_read else gone
        else:
            faults = gone if is_read or path.endswith("/enum") else gone + new
        if faults:
            yield f"{path}: {faults}"
    elif kept != now:
        yield path


def interfaces(path):
    return {each.get("name"): {member.get("name"): [member.tag, member.get("type"), [dict(part.attrib) for part in member]]
                               for member in each} for each in xml.etree.ElementTree.parse(path).getroot()}


class PromiseTest(ProcessTest):
    def kept(self, kind, name, now):
        path = KEPT / kind / name
        self.assertTrue(path.exists(), f"{path} is not kept: test_promise.py --keep")
        self.assertEqual(path.read_text(), now, f"{kind} {name}")

    def replies(self):
        for machine in sorted(MACHINES.glob("*.json")):
            for request in "thermal", "bluetooth":
                yield f"{machine.stem}.{request}.json", self.orvctl(request, "--json", "--simulate", machine)

    def replays(self):
        for recording in sorted((ROOT / "recordings").iterdir()):
            yield f"{recording.stem}.jsonl", self.orvctl("replay", recording)

    def schemas(self):
        for path in sorted((PACKAGING / "schemas").glob("*.json")):
            yield path.name, path.read_text()

    def metrics(self):
        series = set()
        for machine in MACHINES.glob("*.json"):
            text = self.orvctl("metrics", "--simulate", machine)
            series |= {re.sub(r'="(?:[^"\\]|\\.)*"', "", line.rpartition(" ")[0]) for line in text.splitlines() if line[0] != "#"}
        yield "names", "".join(f"{each}\n" for each in sorted(series))

    def buses(self):
        for path in sorted((PACKAGING / "linux").glob("org.orv.*.xml")):
            yield path.name, path.read_text()

    def test_replies_of_all_machines_are_the_same(self):
        for name, reply in self.replies():
            with self.subTest(name):
                self.kept("replies", name, reply)

    def test_recordings_of_all_releases_replay_the_same(self):
        for name, lines in self.replays():
            with self.subTest(name):
                self.kept("replays", name, lines)

    def test_schemas_only_grow(self):
        now = dict(self.schemas())
        self.assertLessEqual({path.name for path in (KEPT / "schemas").iterdir()}, now.keys())
        for path in (KEPT / "schemas").iterdir():
            with self.subTest(path.name):
                self.assertEqual(list(differences(json.loads(path.read_text()), json.loads(now[path.name]),
                                                  path.name in READ_BY_US)), [])
        listed = re.findall(r"^\| \[`(.*)`\]", (ROOT / "docs/schemas.md").read_text(), re.MULTILINE)
        self.assertEqual(sorted(listed), sorted(re.sub(r"-(\d+)\.json$", r"/\1", name) for name in now))

    def test_what_is_written_fits_the_schemas_that_were_kept(self):
        for machine in MACHINES.glob("*.json"):
            for schema, command in (("explain", ("explain", "gpu", "--json", "--simulate", machine)),
                                    ("replay", ("replay", machine)), ("version", ("--version", "--json"))):
                path = KEPT / f"schemas/orv.{schema}-1.json"
                if path.exists():
                    for line in self.orvctl(*command).splitlines():
                        jsonschema.validate(json.loads(line), json.loads(path.read_text()))

    def test_bus_and_protocol_only_grow(self):
        for path in (KEPT / "bus").iterdir():
            with self.subTest(path.name):
                for interface, members in interfaces(path).items():
                    now = interfaces(PACKAGING / "linux" / path.name)[interface]
                    self.assertEqual({name: now.get(name) for name in members}, members)
        requests = interfaces(PACKAGING / "linux/org.orv.OrvXPCRequestData.xml")["org.orv.OrvXPCRequestData"]
        selectors = re.findall(r"^- \(void\)(\w+):\(void \(\^\)\(NSDictionary\*\)\)reply;",
                               (ROOT / "macos/OrvXPCRequestData.h").read_text(), re.MULTILINE)
        self.assertEqual([*requests], ["getModelDatawithReply", "getBTDataWithReply"])
        self.assertEqual(selectors, [*requests])

    def test_metrics_keep_their_names_and_labels(self):
        self.assertLessEqual(set((KEPT / "metrics/names").read_text().splitlines()), set(dict(self.metrics())["names"].splitlines()))

    def test_a_change_would_be_noticed(self):
        schema = {"type": ["object"], "required": ["a"], "title": "s",
                  "properties": {"a": {"type": "string"}, "title": {"enum": ["x", "y"]}}}
        for changed, as_written, as_read in (
                ({**schema, "title": "t"}, 0, 0),
                ({**schema, "required": ["a", "b"]}, 0, 1),
                ({**schema, "required": []}, 1, 0),
                ({**schema, "properties": {**schema["properties"], "b": {}}}, 0, 0),
                ({**schema, "properties": {"a": {"type": "integer"}, "title": {"enum": ["x", "y", "z"]}}}, 1, 1),
                ({**schema, "type": ["object", "null"]}, 1, 0),
                ({**schema, "properties": {"a": {"type": "string"}, "title": {"enum": ["x"]}}}, 1, 1),
                ({**schema, "properties": {"a": {"type": "string"}}}, 1, 1)):
            for is_read, expected in (False, as_written), (True, as_read):
                self.assertEqual(len(list(differences(schema, changed, is_read))), expected, (changed, is_read))

    def keep(self):
        for kind, holds in (("schemas", self.test_schemas_only_grow), ("bus", self.test_bus_and_protocol_only_grow),
                            ("metrics", self.test_metrics_keep_their_names_and_labels)):
            if (KEPT / kind).exists():
                holds()
        for kind, documents in (("replies", self.replies()), ("replays", self.replays()), ("schemas", self.schemas()),
                                ("bus", self.buses()), ("metrics", self.metrics())):
            (KEPT / kind).mkdir(parents=True, exist_ok=True)
            for name, text in documents:
                path = KEPT / kind / name
                if not path.exists() or kind in ("schemas", "bus", "metrics"):
                    path.write_text(text)
                    print(f"kept: {path.relative_to(ROOT)}")


if __name__ == "__main__":
    if sys.argv[1:] == ["--keep"]:
        PromiseTest.test_recordings_of_all_releases_replay_the_same = PromiseTest.keep
        sys.argv[1:] = ["PromiseTest.test_recordings_of_all_releases_replay_the_same"]
    unittest.main()
