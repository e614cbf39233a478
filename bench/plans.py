#!/usr/bin/env python3
"""Measures rules, plans, the way to the trash and back, and a search of several folders.

    plans.py [--rounds N] [--folder FOLDER] [--quick]

The trash is measured on /dev/shm, where a rename waits for no disk, beside bare renaming there and back; the searches with warm
caches in --folder (build/bench/plans), several folders and the one that holds them in turn. Exit status: 0 all bars held, 1 one missed.
"""
import argparse
import json
import os
import random
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BENCH = ROOT / "build/bench/bin/plan-bench"
PROGRAM = ROOT / "build/release/bin/orrinvale-cli"
ROOTS = 8


def row(name, figures, bar, is_held):
    print(f"| {name} | {figures} | {bar} | {'held' if is_held else '**missed**'} |", flush=True)
    return is_held


def bench(*arguments):
    done = subprocess.run([BENCH, *arguments], capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(f"plans.py: {' '.join(map(str, arguments))} failed: {done.stderr}")
    return [line.split("\t") for line in done.stdout.splitlines()]


def make_tree(base, files):
    chance = random.Random(7)
    for number in range(files):
        folder = base / f"r{number % ROOTS}" / f"{number // ROOTS % 125:03}"
        if number < ROOTS * 125:
            folder.mkdir(parents=True)
        content = number if chance.random() < .7 else chance.randrange(number + 1)
        (folder / f"{number:06}.txt").write_bytes(random.Random(content).randbytes(64 + content % 4000))


def searched(roots):
    start = time.perf_counter()
    done = subprocess.run([PROGRAM, "duplicates", "--json", "--quiet", *roots], capture_output=True, check=True)
    return time.perf_counter() - start, json.loads(done.stdout)["summary"]


def roots_row(base, rounds):
    several = [base / f"r{number}" for number in range(ROOTS)]
    searched([base])
    ratios, times = [], []
    for _ in range(rounds):
        (one, a), (many, b) = searched([base]), searched(several)
        if (a["groups"], a["leaves"]) != (b["groups"], b["leaves"]):
            sys.exit(f"plans.py: several folders give {b}, one gives {a}")
        ratios.append(many / one)
        times.append((many, one))
    ratio = statistics.median(ratios)
    return row(f"{ROOTS} folders beside the one that holds them",
               f"{statistics.median(t[0] for t in times):.3f} s, {statistics.median(t[1] for t in times):.3f} s, "
               f"{ratio:.2f} ({min(ratios):.2f} to {max(ratios):.2f})", "1.05", ratio <= 1.05)


def main():
    arguments = argparse.ArgumentParser(add_help=False)
    arguments.add_argument("--rounds", type=int, default=11)
    arguments.add_argument("--folder", type=Path, default=ROOT / "build/bench/plans")
    arguments.add_argument("--quick", action="store_true")
    wanted = arguments.parse_args()
    print("| what | figures | bar | |\n|---|---|---|---|")
    held = True
    for name, wall, processor, longest in bench("rules"):
        held &= row(f"{name}, 200,000 copies, groups", f"{processor} ms of a processor ({wall} by the clock), longest turn {longest} ms",
                    "50 ms", float(processor) <= 50)
    with tempfile.TemporaryDirectory(dir="/dev/shm", prefix="orrinvale-bench-") as memory:
        for name, written, read in bench("file", memory):
            held &= row(name, f"written in {written} ms, read in {read} ms", "1 s", float(written) + float(read) <= 1000)
        for name, bare, there, back, ratio, least, most, processor in bench("trash", memory):
            held &= row("10,000 files to the trash and back", f"{there} + {back} ms, bare renaming {bare} ms, {ratio} ({least} to {most}), of a processor {processor}",
                        "4", float(ratio) <= 4)
    if not wanted.quick:
        base = wanted.folder.resolve()
        shutil.rmtree(base, ignore_errors=True)
        make_tree(base, 80_000)
        held &= roots_row(base, wanted.rounds)
        shutil.rmtree(base, ignore_errors=True)
    return 0 if held else 1


if __name__ == "__main__":
    sys.exit(main())
