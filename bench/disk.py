#!/usr/bin/env python3
"""Finds out how a disk is read best: how many bytes at a time, by how many readers, near each other or far apart.

    disk.py [FILE] [--gib N] [--seconds S]

Reads a file of N GiB (4), made beside the bench corpora unless FILE is given, with nothing of it in memory, leaving nothing there where
the system can do that. *near*: the readers take the pieces of the file in turn, so that together they read it from the start to the
end. *far*: each reader has a stretch of its own. Rounds of all ways take turns until the time is over; the figure is the
median of a way's rounds, with the lowest and the highest. The constants in src/engine/duplicates/HashAhead.cpp name what was found.

Exit status: 0 measured, 2 the command line is wrong, 3 nothing could be measured.
"""
import argparse
import os
import random
import statistics
import sys
import threading
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
MIB, GIB = 1 << 20, 1 << 30
UNCACHED = 0x80  # RWF_DONTCACHE, Linux 6.14
SIZES = (MIB, 4 * MIB, 16 * MIB)
DEPTHS = (1, 2, 4, 8)
SAMPLE = 1 * GIB  # bytes that one round reads


def make(path, size):
    if path.exists() and path.stat().st_size == size:
        return
    path.parent.mkdir(parents=True, exist_ok=True)
    block = random.Random(1).randbytes(16 * MIB)
    with open(path, "wb") as file:
        for number in range(size // len(block)):
            file.write(number.to_bytes(8, "little") + block[8:])
        os.fsync(file.fileno())


def forget(file):
    os.posix_fadvise(file, 0, 0, os.POSIX_FADV_DONTNEED)


def pieces_of(order, depth, size, start, total):
    """For each reader the offsets that it reads, in order."""
    offsets = [start + at for at in range(0, total, size)]
    if order == "near":
        return [offsets[reader::depth] for reader in range(depth)]
    share = (len(offsets) + depth - 1) // depth
    return [offsets[reader * share:(reader + 1) * share] for reader in range(depth)]


def gib_a_second(file, order, depth, size, start, flags):
    forget(file)

    def read(offsets):
        buffer = bytearray(size)
        for offset in offsets:
            os.preadv(file, [buffer], offset, flags)

    threads = [threading.Thread(target=read, args=(offsets,)) for offsets in pieces_of(order, depth, size, start, SAMPLE)]
    begin = time.perf_counter()
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    return SAMPLE / GIB / (time.perf_counter() - begin)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("file", nargs="?", type=Path)
    parser.add_argument("--gib", type=int, default=4)
    parser.add_argument("--seconds", type=float, default=60)
    parser.add_argument("--scale", type=float, default=1, help="of the time")
    options = parser.parse_args()
    path = options.file or ROOT / "build/bench/disk.bin"
    try:
        if options.file is None:
            make(path, options.gib * GIB)
        file = os.open(path, os.O_RDONLY)
    except OSError as error:
        print(f"{path}: {error.strerror}", file=sys.stderr)
        return 3
    total = os.fstat(file).st_size
    if total < SAMPLE:
        print(f"{path} has less than {SAMPLE // GIB} GiB", file=sys.stderr)
        return 3
    try:
        os.preadv(file, [bytearray(1)], 0, UNCACHED)
        flags = UNCACHED
    except OSError:
        flags = 0
    ways = [(order, depth, size) for size in SIZES for depth in DEPTHS for order in (("near", "far") if depth > 1 else ("near",))]
    found = {way: [] for way in ways}
    deadline, part = time.monotonic() + options.seconds * options.scale, 0
    while time.monotonic() < deadline or not found[ways[-1]]:
        for way in random.sample(ways, len(ways)):
            found[way].append(gib_a_second(file, *way, part * SAMPLE % (total // SAMPLE * SAMPLE), flags))
            part += 1
    print(f"{'uncached' if flags else 'cached'} reads, {len(found[ways[0]])} rounds\n\n"
          "| bytes at a time | readers | where | GiB a second (lowest to highest) |\n|---|---|---|---|")
    for order, depth, size in ways:
        speeds = found[order, depth, size]
        print(f"| {size // MIB} MiB | {depth} | {order if depth > 1 else ''} "
              f"| {statistics.median(speeds):.2f} ({min(speeds):.2f} to {max(speeds):.2f}) |")
    return 0


if __name__ == "__main__":
    sys.exit(main())
