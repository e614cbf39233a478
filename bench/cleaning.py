#!/usr/bin/env python3
"""Measures `orrinvale-cli clean`: its list beside `du -s` over the same folders, and what it removes beside `rm -rf`.

    cleaning.py [--pairs N] [--scale F] [--folder FOLDER ...]

The list is made of a home of 300,000 files, most of them caches. Removed are 200,000 files of the trash, in 2,000 folders and as entries of their
own, once in each folder given (usually one on a tmpfs and one under build/bench). Both sides of a pair run in turn on the same files, or
on fresh copies of them. What counts is the median of the ratios of the pairs; beside the time on the clock stands that of the
processors, since a machine that is busy otherwise has no second one to lend. Bars hold at scale 1 only.

Exit status: 0 all bars held, 1 a bar missed or something was left, 2 the command line is wrong, 3 nothing could be measured.
"""
import argparse
import os
import shutil
import statistics
import subprocess
import sys
import time
from pathlib import Path

import compare

MIB = 1 << 20
PARTS = {".cache": 4, "Downloads": 1, ".local/share/Trash/files": 1}
MOST_MEMORY = 40 * MIB


def fill(folder, files, folders):
    """Files of 0 to 299 bytes, in so many folders, or directly in this one."""
    for number in range(max(folders, 1)):
        inner = folder / f"entry{number:05}" if folders else folder
        inner.mkdir(parents=True, exist_ok=True)
        for each in range(files // max(folders, 1)):
            (inner / f"file-{each:06}").write_bytes(b"x" * (each % 300))


def environment(home):
    return {"HOME": str(home), "PATH": os.environ.get("PATH", "/usr/bin:/bin")}


def timed(argv, home):
    """(seconds on the clock, seconds of processors) of one run."""
    start = time.perf_counter()
    process = subprocess.Popen([str(each) for each in argv], env=environment(home), stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    _, status, used = os.wait4(process.pid, 0)
    seconds = time.perf_counter() - start
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode:
        raise compare.RunFailed(f"{argv[0]} ended with status {process.returncode}")
    return seconds, used.ru_utime + used.ru_stime


def row(name, pairs, bar, scale):
    """Prints the line of one measurement; whether its bar held."""
    clock, work = ([ours[at] / theirs[at] for ours, theirs in pairs] for at in (0, 1))
    held = scale != 1 or statistics.median(clock) <= bar
    print(f"| {name} | {statistics.median(ours[0] for ours, _ in pairs):.2f} | {statistics.median(peer[0] for _, peer in pairs):.2f} "
          f"| {statistics.median(clock):.2f} ({min(clock):.2f} to {max(clock):.2f}) | {statistics.median(work):.2f} "
          f"| {bar} {'' if scale != 1 else 'held' if held else '**missed**'} |", flush=True)
    return held


def measure_list(base, options):
    home = base / "home"
    for part, share in PARTS.items():
        files = int(50_000 * share * options.scale)
        fill(home / part, files, max(files // 100, 1))
    ours = [compare.PROGRAM, "clean", *(f"--category={name}" for name in ("user-caches", "user-downloads", "user-trash", "user-logs"))]
    peer = ["du", "-s", *(home / part for part in PARTS)]
    timed(ours, home)
    timed(peer, home)
    held = row(f"list of {int(300_000 * options.scale)} files / du -s", [(timed(ours, home), timed(peer, home)) for _ in range(options.pairs)], .6, options.scale)
    # time(1) would inherit nothing of this process; the home goes with env(1).
    memory = compare.peak_memory(["env", f"HOME={home}", *map(str, ours)], home)
    print(f"| its memory: {memory / MIB:.1f} MiB | | | | | {MOST_MEMORY // MIB} {'held' if memory <= MOST_MEMORY else '**missed**'} |")
    shutil.rmtree(home)
    return held and memory <= MOST_MEMORY


def measure_removal(base, folders, bar, options):
    files = int(200_000 * options.scale)
    trash = base / "home/.local/share/Trash/files"
    pairs = []
    for _ in range(options.pairs):
        fill(trash, files, folders)
        ours = timed([compare.PROGRAM, "clean", "--category=user-trash", "--remove", "--yes", "--quiet"], base / "home")
        if left := sum(1 for _ in trash.iterdir()):
            raise compare.RunFailed(f"{left} entries were left")
        fill(base / "copy", files, folders)
        pairs.append((ours, timed(["rm", "-rf", base / "copy"], base)))
    shutil.rmtree(base / "home")
    name = f"{files} files in {folders or files} entries, {base.parent} / rm -rf"
    return row(name, pairs, bar, options.scale)


def parse():
    arguments = argparse.ArgumentParser(add_help=False)
    arguments.add_argument("--pairs", type=int, default=5)
    arguments.add_argument("--scale", type=float, default=1)
    arguments.add_argument("--folder", type=Path, action="append")
    return arguments.parse_args()


def main():
    options = parse()
    if not compare.PROGRAM.exists() or not shutil.which("time"):
        print(f"{compare.PROGRAM} or time(1) is not there", file=sys.stderr)
        return 3
    print("| measured | ours (s) | beside it (s) | ratio on the clock | of processors | bar |\n|---|---|---|---|---|---|")
    held = True
    for folder in options.folder or [Path("/dev/shm"), compare.ROOT / "build/bench"]:
        base = folder.resolve() / "orrinvale-clean-bench"
        shutil.rmtree(base, ignore_errors=True)
        base.mkdir(parents=True)
        try:
            if folder == (options.folder or [Path("/dev/shm")])[0]:
                held &= measure_list(base, options)
            held &= measure_removal(base, int(2000 * options.scale), 1.15, options)
            held &= measure_removal(base, 0, 2.2, options)
        except compare.RunFailed as error:
            print(error, file=sys.stderr)
            held = False
        finally:
            shutil.rmtree(base, ignore_errors=True)
    return 0 if held else 1


if __name__ == "__main__":
    sys.exit(main())
