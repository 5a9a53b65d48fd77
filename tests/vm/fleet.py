"""A node exporter, and what the page for administrators says to do for it."""

import pathlib
import re

from sessions import until_logged_out
from suite import Check

PAGE = pathlib.Path(__file__).resolve().parents[2] / "docs/fleet.md"
ASK = "import urllib.request; print(urllib.request.urlopen('http://localhost:9100/metrics').read().decode())"
LINK = "/var/lib/prometheus/node-exporter/orv.prom"


class Fleet(Check):
    @classmethod
    def setUpClass(cls):
        cls.addClassCleanup(cls.leave)

    @classmethod
    def leave(cls):
        cls.machine.run("systemctl --user disable --now orv-metrics.timer", "ada")
        cls.machine.run(f"loginctl disable-linger ada; rm -r /var/lib/orv-metrics {LINK}")
        until_logged_out(cls.machine, "ada")

    def exported(self):
        """Once there is more than the version, which is all that is said before the service has answered."""
        text = self.machine.run(f'python3 -c "{ASK}"', status=None)
        return "orv_last_refresh_timestamp_seconds{" in text and text

    def test_page_leads_to_what_the_node_exporter_shows(self):
        commands = re.search(r"## 2\..*?```console\n(.*?)```", PAGE.read_text(), re.S)[1]
        for command in commands.splitlines():
            if command.startswith("sudo "):
                self.machine.run(f"USER=ada; {command.removeprefix('sudo ')}")
            else:
                self.machine.run(command, "ada")
        text = self.machine.until(self.exported, "the readings' times among the node exporter's")
        self.assertRegex(text, r'\norv_build_info\{.*version="[0-9.]+".*\} 1\n')

    def test_next_run_replaces_what_the_last_one_wrote(self):
        changed = f"stat --dereference --format=%Y {LINK}"
        first = self.machine.run(changed)
        self.machine.until(lambda: self.machine.run(changed) != first, "the timer's next run")
        self.assertEqual(self.machine.run("ls -A /var/lib/orv-metrics"), "orv.prom")
        self.assertEqual(self.machine.run("systemctl --user --failed --quiet", "ada"), "")
