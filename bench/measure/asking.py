"""What a client waits for."""

import os
import statistics
import time

from bench import BIN, NAME, run
from rows import Row, ratio

RUNS = 5
PROGRAM_RUNS = 300


def request(bench):
    machine = bench.machine()
    with bench.bus() as environment, bench.service(environment, "--simulate", machine), \
            bench.bare_service(environment, machine):
        runs = [run(*bench.pinned(BIN / "bench-requests", "floor", bench.options.requests), env=environment)
                for _ in range(RUNS)]

    def row(what, percentile, must):
        # Who shares the processor slows both sides, but not alike: the run that was disturbed least.
        times = min(runs, key=lambda each: each["bare"][percentile])
        return ratio(what, "a bare sd-bus service that answers the same entries, asked in turn",
                     times["thermal"][percentile], times["bare"][percentile], must)

    return [row("thermal request of 60 entries, p50", "p50", 1.1), row("the same, p99", "p99", 1.3)]


def slow_refresh(bench):
    with bench.simulated() as (_, idle), bench.simulated("--exchange-delay", "80") as (_, slow):
        times = run(*bench.pinned(BIN / "bench-requests", "slow", bench.options.requests,
                                  idle["DBUS_SESSION_BUS_ADDRESS"], slow["DBUS_SESSION_BUS_ADDRESS"]))
    return [ratio("thermal request while a refresh takes seconds, p99", "the same request to an idle service, in turn",
                  times["slow"]["p99"], times["idle"]["p99"], 1.3)]


def mixed_replies(bench):
    with bench.simulated("--stepping", "--exchange-delay", "0.02") as (_, environment):
        seen = run(BIN / "bench-requests", "mixed", bench.options.replies, env=environment)
    what = f"replies mixed of two refreshes, of {seen['replies']} over {seen['changes']} refreshes"
    return [Row(what, "", str(seen["mixed"]), "0", seen["mixed"] + (seen["changes"] < 10), 0, unit="")]


def metrics(bench):
    def seconds(*command):
        started = time.perf_counter()
        child = os.posix_spawn(command[0], command, environment, file_actions=quietly)
        assert os.waitpid(child, 0)[1] == 0
        return time.perf_counter() - started

    quietly = [(os.POSIX_SPAWN_OPEN, 1, os.devnull, os.O_WRONLY, 0)]
    with bench.simulated() as (_, environment):
        runs = [(seconds(BIN / "orvctl", "metrics"), seconds(BIN / "orvctl", "thermal", "--json"))
                for _ in range(PROGRAM_RUNS)]
    written, printed = (statistics.median(times) * 1000 for times in zip(*runs))
    return [ratio("orvctl metrics of 60 entries, p50", "orvctl thermal --json of the same service, in turn", written,
                  printed, 1.5, unit="ms")]


def activation(bench):
    machine = bench.machine("--other-keys", "434")
    services = bench.folder / "services"
    services.mkdir()
    for name, command in ((NAME, f"{BIN}/orv-smc-helper --simulate {machine}"),
                          ("org.orv.Empty", f"{BIN}/bench-empty org.orv.Empty")):
        (services / f"{name}.service").write_text(f"[D-BUS Service]\nName={name}\nExec={command}\n")
    configuration = bench.folder / "bus.conf"
    configuration.write_text(f"""<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen>
        <servicedir>{services}</servicedir><policy context="default"><allow send_destination="*"/><allow own="*"/>
        <allow eavesdrop="true"/></policy></busconfig>""")
    with bench.bus(f"--config-file={configuration}") as environment:
        times = run(*bench.pinned(BIN / "bench-activation", bench.options.activations), env=environment)
    return [ratio("activation to the first reply, 500 keys, p50",
                  "the activation of a service of two threads that answers nothing", times["service"], times["empty"],
                  1.6, unit="ms")]
