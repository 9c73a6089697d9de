#!/usr/bin/env python3
"""Plants small faults one at a time and tells which of them no test notices.

    tools/mutate.py [--only WORD] [--jobs N]   plants, builds, tests; exits with 1 if too many survive
    tools/mutate.py --check                    only looks whether each fault can still be planted

The faults are the rows of tools/faults.toml. Work is done in a copy of the tree under build/mutate, which keeps
its objects from run to run. A row names the test program that should notice, and may name the tests in it.
"""
import argparse
import os
import shutil
import subprocess
import sys
import tomllib
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
COPY = ROOT / "build" / "mutate"
ENOUGH = 0.9  # the share of faults that has to be noticed


def rows(only):
    with open(ROOT / "tools" / "faults.toml", "rb") as file:
        for row in tomllib.load(file)["fault"]:
            if not only or only in row["file"] or only in row["breaks"]:
                yield row


def unplantable(row):
    path = ROOT / row["file"]
    count = path.read_text().count(row["text"]) if path.exists() else 0
    return None if count == 1 else f"{row['file']}: found {count} times: {row['text']!r}"


def refresh_copy():
    """Files that have not changed keep their times, so that they need not be compiled again."""
    listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=ROOT, check=True,
                            capture_output=True, text=True).stdout.splitlines()
    for name in listed:
        source, target = ROOT / name, COPY / name
        if source.is_file() and not (target.exists() and target.read_bytes() == source.read_bytes()):
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(source, target)
    for folder in ("src", "tests"):
        for target in (COPY / folder).rglob("*"):
            if target.is_file() and not (ROOT / target.relative_to(COPY)).exists():
                target.unlink()


def program_of(row):
    return row.get("program") or "test_" + Path(row["file"]).parts[1]


def build(target, jobs):
    done = subprocess.run(["cmake", "--build", COPY / "build" / "release", "-j", str(jobs), "--target", target],
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    return None if done.returncode == 0 else done.stdout[-2000:]


def notices(row):
    """Whether a test fails; one that never comes back has noticed, too."""
    command = [COPY / "build" / "release" / "tests" / program_of(row), "--gtest_fail_fast", "--gtest_brief=1"]
    if "tests" in row:
        command.append("--gtest_filter=" + row["tests"])
    try:
        return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=300,
                              env=os.environ | {"QT_QPA_PLATFORM": "offscreen"}).returncode != 0
    except subprocess.TimeoutExpired:
        return True


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("--check", action="store_true")
    options.add_argument("--only", metavar="WORD")
    options.add_argument("--jobs", type=int, default=2)
    options = options.parse_args()
    table = list(rows(options.only))
    lost = [problem for problem in map(unplantable, table) if problem]
    if options.check or lost:
        print("\n".join(lost) or f"{len(table)} faults can be planted")
        return bool(lost)
    COPY.mkdir(parents=True, exist_ok=True)
    refresh_copy()
    subprocess.run(["cmake", "--preset", "release"], cwd=COPY, check=True, stdout=subprocess.DEVNULL)
    for program in sorted({program_of(row) for row in table}):
        if problem := build(program, options.jobs):
            sys.exit(problem)
    survivors = []
    for number, row in enumerate(table, 1):
        file = COPY / row["file"]
        sound = file.read_text()
        file.write_text(sound.replace(row["text"], row["with"]))
        # A fault that the compiler refuses is noticed as well, but says nothing of the tests.
        problem = build(program_of(row), options.jobs)
        outcome = "does not build" if problem else "noticed" if notices(row) else "SURVIVES"
        file.write_text(sound)
        if outcome != "noticed":
            survivors.append(row)
        print(f"{number:3}/{len(table)} {outcome:14} {row['file']}: {row['breaks']}", flush=True)
    noticed = len(table) - len(survivors)
    print(f"{noticed} of {len(table)} noticed")
    return noticed < ENOUGH * len(table)


if __name__ == "__main__":
    sys.exit(main())
