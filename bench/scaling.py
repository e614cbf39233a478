#!/usr/bin/env python3
"""Measures how the time per file of the duplicate search grows with the number of files.

    scaling.py [SHAPE ...] [--max N] [--scale F]

Each shape grows in one folder, from 10,000 files up to --max (300,000), is measured at each size with warm caches, and is removed
again. Growth is the time per file against the lowest of the same shape on smaller trees; beyond 1.5 the shape fails. On the
smallest trees the start of the program is part of the figure, which can hide no growth, since only what rises counts.

Exit status: 0 every shape held, 1 one did not, 2 the command line is wrong, 3 nothing could be measured.
"""
import argparse
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
PROGRAM = ROOT / "build/release/bin/orrinvale-cli"
SIZES = (10_000, 30_000, 100_000, 300_000, 500_000, 1_000_000)
LIMIT = 1.5
PER_FOLDER = 40
FILES_PER_LEVEL = 100
SMALL = 64           # bytes of a file that is read; each takes one block of the disk
BLOCK = 4096
INODE = 256
GIB = 1 << 30


def put(folder, name, content=b"", size=None):
    """A file in an open folder: with a content, or with a size alone, which takes no room on the disk."""
    file = os.open(name, os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o644, dir_fd=folder)
    try:
        if size is not None:
            os.ftruncate(file, size)
        else:
            os.write(file, content)
    finally:
        os.close(file)


class Shape:
    """A tree that grows. `blocks` says how many blocks of the disk a file takes."""
    blocks = 0
    most = SIZES[-1]

    def __init__(self, root):
        self.count = 0
        self.folder = os.open(root, os.O_RDONLY | os.O_DIRECTORY)
        self.root = os.dup(self.folder)

    def close(self):
        os.close(self.folder)
        os.close(self.root)

    def enter(self, parent, name):
        os.mkdir(name, dir_fd=parent)
        opened = os.open(name, os.O_RDONLY | os.O_DIRECTORY, dir_fd=parent)
        os.close(self.folder)
        self.folder = opened

    def grow(self, count):
        for number in range(self.count, count):
            self.place(number)
            self.add(number)
        self.count = count

    def place(self, number):
        if number % PER_FOLDER == 0:
            self.enter(self.root, "d%06d" % (number // PER_FOLDER))

    def add(self, number):
        raise NotImplementedError


class DistinctSizes(Shape):
    """Every size stands alone, so nothing is read: the cost of listing and sorting out."""

    def add(self, number):
        put(self.folder, "f%d" % number, size=number + 1)


class OneSize(Shape):
    """All of one size and no two equal: one class of sizes that holds every file."""
    blocks = 1
    most = 500_000

    def add(self, number):
        put(self.folder, "f%d" % number, number.to_bytes(8, "little") * (SMALL // 8))


class SmallDuplicates(Shape):
    """Pairs of equal files in about a thousand sizes."""
    blocks = 1

    def add(self, number):
        content = number // 2
        put(self.folder, "f%d" % number, content.to_bytes(8, "little") + bytes(content % 1000))


class Wide(DistinctSizes):
    """One folder that holds everything."""

    def place(self, number):
        pass


class Deep(DistinctSizes):
    """One chain of folders, 100 files in each, up to 10,000 deep: far beyond what a path may name."""

    def place(self, number):
        if number % FILES_PER_LEVEL == 0 and number:
            self.enter(self.folder, "n")


SHAPES = {"distinct-sizes": DistinctSizes, "one-size": OneSize, "small-duplicates": SmallDuplicates, "wide": Wide, "deep": Deep}


def seconds(folder):
    start = time.perf_counter_ns()
    done = subprocess.run([str(PROGRAM), "duplicates", "--json", "--quiet", "--no-cache", folder], stdin=subprocess.DEVNULL,
                          stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=False)
    if done.returncode:
        raise RuntimeError(f"ended with status {done.returncode}: {done.stderr.decode(errors='replace').strip()[:200]}")
    return (time.perf_counter_ns() - start) / 1e9


def nanoseconds_a_file(folder, count, runs):
    seconds(folder)  # warms the caches
    return statistics.median(seconds(folder) for _ in range(runs)) / count * 1e9


def lack_of_room(place, shape, count):
    """Why a shape of so many files does not fit; empty when it does."""
    need = count * (shape.blocks * BLOCK + INODE + 64)
    facts = os.statvfs(place)
    if need + 2 * GIB > facts.f_bavail * facts.f_frsize:
        return f"takes {need / GIB:.1f} GiB and 2 GiB should stay free"
    if facts.f_files and count * 1.1 > facts.f_favail:
        return f"takes {count} inodes, {facts.f_favail} are free"
    return ""


def measure(name, options):
    """True when the shape held, False when not, None when nothing was measured."""
    shape_type = SHAPES[name]
    top = min(options.max, shape_type.most)
    sizes = sorted({count for count in SIZES if count < top} | {top})
    options.place.mkdir(parents=True, exist_ok=True)
    lack = lack_of_room(options.place, shape_type, top)
    if lack:
        print(f"| {name} | | | *skipped: {lack}* |", flush=True)
        return None
    holder = tempfile.mkdtemp(prefix="scaling-", dir=options.place)
    shape, lowest, held = shape_type(holder), None, True
    try:
        for count in sizes:
            shape.grow(count)
            os.sync()
            figure = nanoseconds_a_file(holder, count, options.runs)
            growth = figure / lowest if lowest else 1
            held = held and growth <= LIMIT
            print(f"| {name} | {count:,} | {figure:.0f} | {growth:.2f}{'' if growth <= LIMIT else ' **missed**'} |", flush=True)
            lowest = min(figure, lowest or figure)
    except RuntimeError as error:
        print(f"| {name} | {shape.count:,} | | **{error}** |", flush=True)
        held = False
    finally:
        shape.close()
        # rm goes down by descriptors, so the depth of the chain does no harm.
        subprocess.run(["rm", "-rf", "--", holder], check=True)
    return held


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("shape", nargs="*", help=" ".join(SHAPES))
    parser.add_argument("--max", type=int, default=300_000, help="files of the largest tree (300000)")
    parser.add_argument("--scale", type=float, default=1.0, help="share of --max that is really made (1); 30,000 files at least")
    parser.add_argument("--runs", type=int, default=3, help="timed runs at each size (3)")
    parser.add_argument("--place", type=Path, default=ROOT / "build/bench/scaling", help="where the trees are made")
    options = parser.parse_args()
    unknown = set(options.shape) - set(SHAPES)
    options.max = max(int(options.max * options.scale), SIZES[1])
    if unknown or options.runs < 1:
        parser.error(f"no shape is called {', '.join(sorted(unknown))}" if unknown else "--runs must be above 0")
    if not shutil.which(str(PROGRAM)):
        print(f"{PROGRAM} is not there; ./dev bench scaling builds it", file=sys.stderr)
        return 3
    print("| shape | files | ns a file | growth |\n|---|---|---|---|", flush=True)
    verdicts = [measure(name, options) for name in options.shape or SHAPES]
    if all(verdict is None for verdict in verdicts):
        return 3
    return 1 if False in verdicts else 0


if __name__ == "__main__":
    sys.exit(main())
