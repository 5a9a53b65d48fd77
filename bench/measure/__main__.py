"""Measures the helper against floors taken in the same run, and says which goals hold. Run it through scripts/bench.

Only ratios are judged; the times beside them say what they were made of.
"""

import argparse
import dataclasses
import json
import sys
import tempfile

import asking
import living
import looking
import refreshing
import replaying
import tables
import watching
from bench import Bench

MEASURES = {measure.__name__: measure for measure in (
    asking.request, asking.slow_refresh, asking.mixed_replies, asking.metrics, refreshing.code,
    refreshing.instructions, refreshing.host, living.wake_ups, watching.watch, looking.top, living.memory,
    asking.activation, replaying.replay, living.endurance)}


def options():
    parser = argparse.ArgumentParser(prog="bench", description=__doc__.splitlines()[0])
    parser.add_argument("only", nargs="*", metavar="MEASURE", help="one of " + ", ".join(MEASURES) + " (all)")
    parser.add_argument("--json", action="store_true", help="print the rows as JSON")
    parser.add_argument("--markdown", action="store_true", help="also write the table of docs/measured.md")
    parser.add_argument("--full", action="store_true", help="10^6 replies and refreshes, 20 minutes of idling")
    parser.add_argument("--requests", type=int, default=20_000)
    parser.add_argument("--activations", type=int, default=100)
    chosen = parser.parse_args()
    unknown = set(chosen.only) - set(MEASURES)
    if unknown:
        parser.error("no such measure: " + ", ".join(sorted(unknown)))
    if chosen.markdown and chosen.only:
        parser.error("--markdown writes the whole table")
    chosen.replies, chosen.refreshes = (10**6, 10**6) if chosen.full else (20_000, 10**5)
    chosen.minutes = 20 if chosen.full else 2
    return chosen


def main():
    chosen = options()
    rows = []
    with tempfile.TemporaryDirectory(prefix="orv-bench-") as folder:
        bench = Bench(chosen, folder)
        for name in chosen.only or MEASURES:
            print(f"measuring {name}", file=sys.stderr, flush=True)
            rows += MEASURES[name](bench)
    if chosen.markdown:
        tables.write_document(rows)
    if chosen.json:
        print(json.dumps([{**dataclasses.asdict(row), "verdict": row.verdict} for row in rows], indent=2))
    else:
        tables.print_table(rows)
    return 1 if any(row.verdict == "falls short" for row in rows) else 0


if __name__ == "__main__":
    sys.exit(main())
