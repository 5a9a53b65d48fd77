"""Prometheus, as it is, with the rules that are shipped."""

import json
import pathlib
import subprocess
import time
import urllib.error
import urllib.parse
import urllib.request

from mac import free_port

RULES = pathlib.Path(__file__).resolve().parents[2] / "packaging/prometheus/orv.rules.yml"
INTERVAL = "2s"


class Engine:
    def __init__(self, fleet, folder):
        targets = [{"targets": [f"127.0.0.1:{mac.port}"], "labels": {"instance": mac.name}} for mac in fleet]
        configuration = folder / "prometheus.yml"
        configuration.write_text(json.dumps({  # which is YAML too
            "global": {"scrape_interval": INTERVAL, "scrape_timeout": INTERVAL, "evaluation_interval": INTERVAL},
            "rule_files": [str(RULES)],
            "scrape_configs": [{"job_name": "node", "static_configs": targets}]}))
        subprocess.run(["promtool", "check", "config", configuration], check=True, stdout=subprocess.DEVNULL)
        port = free_port()
        self.address = f"http://127.0.0.1:{port}/api/v1/"
        self.process = subprocess.Popen(
            ["prometheus", f"--config.file={configuration}", f"--web.listen-address=127.0.0.1:{port}",
             f"--storage.tsdb.path={folder / 'tsdb'}"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def ask(self, what, **parameters):
        with urllib.request.urlopen(f"{self.address}{what}?{urllib.parse.urlencode(parameters)}", timeout=30) as answer:
            return json.load(answer)["data"]

    def query(self, expression):
        """Instance to value."""
        return {each["metric"].get("instance"): float(each["value"][1])
                for each in self.ask("query", query=expression)["result"]}

    def firing(self):
        """What fires: name, instance and, where there is one, key."""
        return {(each["labels"]["alertname"], each["labels"]["instance"], each["labels"].get("key"))
                for each in self.ask("alerts")["alerts"] if each["state"] == "firing"}

    def wait(self, seconds, condition):
        """Whether it came about in time."""
        deadline = time.monotonic() + seconds
        while time.monotonic() < deadline:
            try:
                if condition():
                    return True
            except urllib.error.URLError:
                pass  # while it starts
            time.sleep(1)
        return False

    def end(self):
        self.process.kill()
        self.process.wait()
