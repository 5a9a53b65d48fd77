"""What users' sessions see: activation by the first request, a silent journal, a computer without user namespaces."""

import concurrent.futures
import json

from suite import Check

USERS = ("root", "ada", "ben")
UNIT = "orv-smc-helper.service"
DROP_IN = "/usr/share/orv-smc-helper/no-user-namespaces.conf"


def complaints(machine):
    """What the service and its programs wrote into the journal of this boot, and what others warned of about them."""
    lines = []
    for entry in map(json.loads, machine.run("journalctl --boot --output=json --no-pager").splitlines()):
        unit, message = entry.get("USER_UNIT", entry.get("_SYSTEMD_USER_UNIT")), str(entry.get("MESSAGE"))
        program = entry.get("SYSLOG_IDENTIFIER")
        if program in ("orv-smc-helper", "system_profiler", "orvctl") or (
                int(entry.get("PRIORITY", 6)) < 6 and (unit == UNIT or "orv" in message)):
            lines.append(f"{program}: {message}")
    return lines


def until_logged_out(machine, user):
    """Ten seconds after its last session a user's manager ends, and all services with it."""
    state = f"systemctl is-active user@$(id -u {user})"
    machine.until(lambda: machine.run(state, status=None) in ("inactive", "failed"), f"the end of {user}'s manager")


class Activation(Check):
    def test_first_request_starts_a_service_for_root_and_each_user(self):
        command = f"orvctl thermal --json && systemctl --user show --property=MainPID --value {UNIT} && sleep 10"
        with concurrent.futures.ThreadPoolExecutor() as pool:
            outputs = list(pool.map(lambda user: self.machine.run(command, user).split("\n"), USERS))
        self.assertEqual([reply for reply, process in outputs], ["{}"] * len(USERS))
        self.assertEqual(len({process for reply, process in outputs}), len(USERS))

    def test_unit_is_hardened_where_namespaces_are_allowed(self):
        self.machine.run(f"orvctl thermal && systemd-analyze --user security --threshold=20 {UNIT}", "ada")
        self.machine.run("systemd-analyze security --offline=true --user --threshold=20 "
                         f"/usr/lib/systemd/user/{UNIT}", "ada")


class Journal(Check):
    def test_login_use_and_logout_are_silent(self):
        for user in USERS:
            self.machine.run("orvctl thermal && orvctl bluetooth", user)
        for user in USERS[1:]:
            until_logged_out(self.machine, user)
        self.assertEqual(complaints(self.machine), [])

    def test_service_ends_with_the_users_last_session(self):
        self.assertEqual(self.machine.run("pgrep -u ada,ben orv-smc-helper", status=None), "")


class NoNamespaces(Check):
    def allow(self, are_allowed):
        self.machine.run(f"/sbin/sysctl --write kernel.unprivileged_userns_clone={int(are_allowed)}")

    def setUp(self):
        self.addCleanup(self.allow, True)
        for user in USERS[1:]:
            until_logged_out(self.machine, user)

    def test_first_request_starts_the_service_there_too(self):
        self.allow(False)
        self.assertEqual(self.machine.run("orvctl thermal --json", "ada"), "{}")
        self.assertIn("no-user-namespaces", self.machine.run(f"systemctl --user status {UNIT}", "ada"))

    def test_manager_that_started_before_is_told_to_look_again(self):
        told = f"systemctl --user daemon-reload && systemctl --user restart {UNIT} && orvctl thermal --json"
        # It promises two seconds; where all is emulated, and half of that another's, eight.
        change = self.machine.start("systemctl --user is-system-running --wait; read go; timeout 8 orvctl thermal; "
                                    "echo $?; " + told, "ben")
        try:
            self.assertEqual(change.stdout.readline().strip(), "running")
            self.allow(False)
            output = change.communicate("go\n", timeout=180)[0].split("\n")
        finally:
            change.kill()
        self.assertEqual(output[1:3], ["1", "{}"], output)
        self.assertIn(DROP_IN, output[0])

    def tearDown(self):
        for user in USERS[1:]:
            until_logged_out(self.machine, user)
