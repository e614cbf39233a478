#!/usr/bin/env python3
"""Measures removals: setting aside beside plain unlinking, and search with removal beside `jdupes -dN`.

    removal.py [--rounds N] [--folder FOLDER] [--scale F]

Both sides of a pair get a fresh copy of the same files, read once so that it is warm, and run in turn. What counts is the median of
the ratios. The folder (build/bench/removal) decides which file system is measured. Exit status: 0 all bars held, 1 one missed.
"""
import argparse
import os
import random
import shutil
import statistics
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
PROGRAM = ROOT / "build/bench/bin/removal-bench"


def write_all(folder, sizes, seed):
    chance = random.Random(seed)
    folder.mkdir(parents=True)
    for number, size in enumerate(sizes):
        (folder / f"{number:06}").write_bytes(chance.randbytes(size))


def fresh(source, target):
    shutil.rmtree(target, ignore_errors=True)
    shutil.copytree(source, target)
    for path, _, names in os.walk(target):
        for name in names:
            with open(os.path.join(path, name), "rb") as file:
                while file.read(1 << 20):
                    pass
    os.sync()


def timed(command):
    start = time.perf_counter()
    subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
    return time.perf_counter() - start


def pairs(name, source, work, ours, peer, rounds, bar):
    ratios, times = [], []
    for _ in range(rounds):
        figures = []
        for command in (ours, peer):
            fresh(source, work)
            figures.append(timed(command))
        ratios.append(figures[0] / figures[1])
        times.append(figures)
    ratio = statistics.median(ratios)
    print(f"| {name} | {statistics.median(t[0] for t in times):.3f} | {statistics.median(t[1] for t in times):.3f} "
          f"| {ratio:.2f} ({min(ratios):.2f} to {max(ratios):.2f}) | {bar} | {'held' if ratio <= bar else 'missed'} |", flush=True)
    return ratio <= bar


def main():
    arguments = argparse.ArgumentParser(add_help=False)
    arguments.add_argument("--rounds", type=int, default=5)
    arguments.add_argument("--folder", type=Path, default=ROOT / "build/bench/removal")
    arguments.add_argument("--scale", type=float, default=1)
    wanted = arguments.parse_args()
    base = wanted.folder.resolve()
    shutil.rmtree(base, ignore_errors=True)
    chance = random.Random(1)
    many = int(100_000 * wanted.scale)
    write_all(base / "aside/a", [16] * many, 2)
    shutil.copytree(base / "aside/a", base / "aside/b")
    sizes = [chance.randrange(1, 16 << 10) for _ in range(int(10_000 * wanted.scale))] + [64 << 20] * int(20 * wanted.scale)
    write_all(base / "copies/a", sizes, 3)
    shutil.copytree(base / "copies/a", base / "copies/b")
    work, state = base / "work", base / "state"
    print("| removal | ours (s) | beside it (s) | ratio | bar | |\n|---|---|---|---|---|---|")
    held = pairs(f"{many} set aside / unlinked", base / "aside", work, [PROGRAM, "aside", work / "a", work / "b", state],
                 [PROGRAM, "unlink", work / "a"], wanted.rounds, 2.2)
    if shutil.which("jdupes"):
        held &= pairs("search and removal with comparison / jdupes -dN", base / "copies", work,
                      [PROGRAM, "search", work, state], ["jdupes", "-r", "-q", "-d", "-N", work], wanted.rounds, .6)
    else:
        print("jdupes is not installed: skipped", file=sys.stderr)
    shutil.rmtree(base, ignore_errors=True)
    return 0 if held else 1


if __name__ == "__main__":
    sys.exit(main())
