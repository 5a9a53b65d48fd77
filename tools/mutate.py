#!/usr/bin/python3
"""Puts one-place faults into the code at random and tells which of them no unit test notices.

Works on a copy in build/mutate. A fault that changes no behaviour is listed in mutate-equivalent.txt beside this script:
path, a tab, the line as it was, a tab, the line as it became, a tab, and the reason.
"""

import argparse
import collections
import random
import re
import shutil
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
WORK = ROOT / "build/mutate"
SOURCE = WORK / "source"
CORE = ["base", "readings", "refresh", "smc", "thermal", "bluetooth", "service", "json"]
SWAPS = {"comparison": {"<=": "<", ">=": ">", "==": "!=", "!=": "==", "<": "<=", ">": ">="},
         "truth": {"true": "false", "false": "true"}, "junction": {"&&": "||", "||": "&&"}}
SITES = {"comparison": re.compile(r"(?<= )(<=|>=|==|!=|<|>)(?= )"), "truth": re.compile(r"\b(true|false)\b"),
         "junction": re.compile(r"(&&|\|\|)(?= )"), "condition": re.compile(r"(?<=\bif \()(.+)(?=\)$)"),
         "constant": re.compile(r"(?<![\w.'\"])(0x[0-9A-Fa-f]+|\d+)(?=[,;)\]}\s+*/-])(?!\.)"),
         "entry": re.compile(r'"((?:[^"\\]|\\.)+)"'),
         "statement": re.compile(r"^ +((?!return|const|auto|using|static|case|break|continue|std::\w+ \w)[\w.:>\[\]*()+-]+"
                                 r"(?:\(.*\)| [-+|^]?= .+));$")}
IGNORED = re.compile(r"^\s*(//|#|static_assert|template|fatalError)|operator")


def faults_in(file):
    """Each place of a kind, as (kind, file, number of the line, the line with the fault)."""
    for number, line in enumerate(file.read_text(encoding="utf-8").splitlines()):
        code = line.split("//")[0].rstrip()
        texts = [span.span() for span in SITES["entry"].finditer(code)]
        for kind, pattern in SITES.items() if not IGNORED.search(code) else ():
            for site in pattern.finditer(code):
                if kind != "entry" and any(start < site.start(1) < end for start, end in texts):
                    continue
                yield kind, file, number, code[:site.start(1)] + replacement(kind, site[1]) + code[site.end(1):]


def replacement(kind, text):
    if kind in SWAPS:
        return SWAPS[kind][text]
    if kind == "condition":
        return f"!({text})"
    if kind == "constant":
        return hex(int(text, 16) + 1) if text.startswith("0x") else str(int(text) + random.choice((1, -1) if int(text) else (1,)))
    if kind == "entry":
        return text[:-1] + ("y" if text[-1] != "y" else "x")
    return ""


def build():
    return subprocess.run(["cmake", "--build", WORK / "build", "--target", "orv-tests"], capture_output=True).returncode == 0


def tests_pass(limit):
    """What hangs or breaks has been noticed."""
    try:
        return subprocess.run([WORK / "build/bin/orv-tests", "--gtest_brief=1", "--gtest_fail_fast"], capture_output=True,
                              timeout=limit).returncode == 0
    except subprocess.TimeoutExpired:
        return False


def try_fault(file, number, line, limit):
    text = file.read_text(encoding="utf-8")
    lines = text.splitlines()
    lines[number] = line
    file.write_text("\n".join(lines) + "\n", encoding="utf-8")
    try:
        return "did not compile" if not build() else "survived" if tests_pass(limit) else "noticed"
    finally:
        file.write_text(text, encoding="utf-8")


def copy_source():
    """Writes only what differs, also from what a run that was killed has left: the build goes by the files' times."""
    tops = [top for top in ROOT.iterdir() if top.name != "build" and not top.name.startswith(".")]
    files = {file.relative_to(ROOT) for top in tops for file in (top, *top.rglob("*")) if file.is_file()}
    for file in files:
        target = SOURCE / file
        target.parent.mkdir(parents=True, exist_ok=True)
        if not target.exists() or target.read_bytes() != (ROOT / file).read_bytes():
            shutil.copy(ROOT / file, target)
    for target in [each for each in SOURCE.rglob("*") if each.is_file() and each.relative_to(SOURCE) not in files]:
        target.unlink()


def prepare():
    """Builds the copy as it is; returns how long its tests may take."""
    copy_source()
    subprocess.run(["cmake", "-S", SOURCE, "-B", WORK / "build", "-G", "Ninja", "-D", "CMAKE_CXX_FLAGS=-O0 -D_GLIBCXX_ASSERTIONS"],
                   check=True, capture_output=True)
    if not build() or not tests_pass(600):
        sys.exit("the code does not build, or fails its tests, as it is")
    start = time.monotonic()
    tests_pass(600)
    return 10 + 5 * (time.monotonic() - start)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--count", type=int, default=60)
    parser.add_argument("--folders", nargs="+", default=CORE, help="the core by default; also: linux simulated")
    options = parser.parse_args()
    limit = prepare()
    random.seed(options.seed)
    sites = collections.defaultdict(list)
    for folder in options.folders:
        for file in sorted((SOURCE / folder).rglob("*")):
            for fault in faults_in(file) if file.suffix in {".h", ".cpp"} else ():
                sites[fault[0]].append(fault)
    listed = Path(__file__).with_name("mutate-equivalent.txt").read_text(encoding="utf-8").splitlines()
    equivalent = {tuple(row.split("\t")[:3]) for row in listed}
    outcomes = collections.Counter()
    while sum(outcomes.values()) - outcomes["did not compile"] < options.count:
        kind, file, number, line = random.choice(sites[random.choice(sorted(sites))])
        before = file.read_text(encoding="utf-8").splitlines()[number].strip()
        path = file.relative_to(SOURCE).as_posix()
        known = (path, before, line.strip()) in equivalent
        outcome = "changes nothing" if known else try_fault(file, number, line, limit)
        outcomes[outcome] += 1
        if outcome == "survived":
            print(f"{path}:{number + 1}: {kind}\n  - {before}\n  + {line.strip()}", flush=True)
    print(f"seed {options.seed}: " + ", ".join(f"{count} {outcome}" for outcome, count in sorted(outcomes.items())))


if __name__ == "__main__":
    main()
