#!/usr/bin/env python3
"""Measures `orrinvale-cli size` beside `du -sb` on the same folders in the same minutes.

    sizes.py [CORPUS ...] [--scale F]

Works as compare.py does: corpora are made once under build/bench/corpora, the answer is checked before anything is timed, the
two programs run in turn, and what counts is the median of the ratios of the pairs. The answer is checked against a walk of
our own, since du counts folders too and each file once, however many names it has. The table goes to standard output, the
figures to build/bench/sizes.json.

Exit status: 0 all bars held, 1 a bar or an answer missed, 2 the command line is wrong, 3 nothing could be measured.
"""
import argparse
import dataclasses
import json
import os
import shutil
import stat
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import compare
import corpus

RESULTS = compare.ROOT / "build/bench/sizes.json"
PEER = "du -sb"

# Highest allowed ratio of our time to that of du, at scale 1: corpus -> state -> bar. Warm, one look at each entry is nearly all that
# either program does; we share it among the processors. A deep chain can not be shared, there we only keep up.
BARS = {
    "many-small": {"warm": 0.60, "cold": 0.45},
    "wide": {"warm": 0.55, "cold": 0.55},
    "deep": {"warm": 1.0, "cold": 1.0},
}
MEMORY = 32 << 20  # highest peak, whatever the size of the tree


def ours(folder):
    return [str(compare.PROGRAM), "size", "--json", "--quiet", str(folder)]


def counted(folder):
    """Bytes, files and folders below a folder, by the plainest walk there is."""
    found = {"size": 0, "files": 0, "folders": 0}
    waiting = [os.fsencode(folder)]
    while waiting:
        with os.scandir(waiting.pop()) as entries:
            for entry in entries:
                if entry.is_dir(follow_symlinks=False):
                    found["folders"] += 1
                    waiting.append(entry.path)
                    continue
                facts = entry.stat(follow_symlinks=False)
                found["files"] += 1
                if stat.S_ISREG(facts.st_mode) or stat.S_ISLNK(facts.st_mode):
                    found["size"] += facts.st_size
    return found


def wrong_answer(folder):
    """What is wrong with our answer; empty when nothing is."""
    done = subprocess.run(ours(folder), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
    if done.returncode:
        return f"ended with status {done.returncode}: {done.stderr.decode(errors='replace').strip()[:200]}"
    expected = counted(folder)
    try:
        told = json.loads(done.stdout)["sizes"][0]
        return ", ".join(f"{key} {told[key]} instead of {expected[key]}" for key in expected if told[key] != expected[key])
    except (ValueError, KeyError, IndexError) as error:
        return f"the answer can not be read: {error!r}"


def pairs_of(name, state, peer, commands, options):
    """Runs of two commands in turn, and the peak memory of each."""
    comparison = compare.Comparison(name, state, peer)
    with tempfile.TemporaryDirectory() as where:
        try:
            # The run for the memory is the one that warms the caches.
            comparison.memory = tuple(compare.peak_memory(command, where) for command in commands)
            deadline = time.monotonic() + options.seconds
            while len(comparison.pairs) < options.pairs:
                if len(comparison.pairs) >= compare.FEWEST_PAIRS and time.monotonic() > deadline:
                    break
                pair = []
                for command in commands:
                    if state == "cold":
                        compare.empty_caches()
                    pair.append(compare.run_timed(command, where))
                comparison.pairs.append(tuple(pair))
        except compare.RunFailed as error:
            comparison.pairs.clear()
            comparison.skipped = str(error)
    return comparison


def bar_of(comparison, scale):
    """Bars hold at scale 1 only: on smaller corpora the start of the programs weighs more."""
    return BARS.get(comparison.corpus, {}).get(comparison.state) if scale == 1 else None


def held(comparison, scale):
    bar = bar_of(comparison, scale)
    return not comparison.pairs or ((bar is None or comparison.ratio() <= bar) and comparison.memory[0] <= MEMORY)


def table(comparisons, scale):
    lines = [f"| corpus | caches | ours (s) | {PEER} (s) | ours / {PEER} (lowest to highest) | bar | memory, ours / {PEER} (MiB) |",
             "|---|---|---|---|---|---|---|"]
    for one in comparisons:
        if one.skipped:
            lines.append(f"| {one.corpus} | {one.state} | | | *skipped: {one.skipped}* | | |")
            continue
        bar = bar_of(one, scale)
        verdict = f"{bar:.2f} {'held' if one.ratio() <= bar else '**missed**'}" if bar else ""
        lines.append(f"| {one.corpus} | {one.state} | {one.seconds(0):.4f} | {one.seconds(1):.4f} "
                     f"| {one.ratio():.2f} ({min(one.ratios()):.2f} to {max(one.ratios()):.2f}) | {verdict} "
                     f"| {one.memory[0] / 2**20:.1f} / {one.memory[1] / 2**20:.1f}"
                     f"{'' if one.memory[0] <= MEMORY else ' **too much**'} |")
    return "\n".join(lines)


def measure(options):
    comparisons, wrong = [], {}
    root = options.corpora or compare.ROOT / "build/bench/corpora" / f"scale-{options.scale:g}"
    no_cold = compare.cold_impossible() if "cold" in options.states else ""
    for name in options.corpus or BARS:
        expected = compare.prepare(root, name, options)
        reason = expected if isinstance(expected, str) else ""
        if not reason:
            wrong[name] = wrong_answer(root / name)
            if wrong[name]:
                print(f"{name}: wrong answer: {wrong[name]}", file=sys.stderr)
                continue
        for state in options.states:
            why = reason or (no_cold if state == "cold" else "")
            one = compare.Comparison(name, state, PEER, skipped=why) if why else pairs_of(
                name, state, PEER, (ours(root / name), [*PEER.split(), str(root / name)]), options)
            shown = f"skipped: {one.skipped}" if one.skipped else f"{one.ratio():.3f} of {one.seconds(1):.4f} s"
            print(f"{name}, {state}: {shown}", file=sys.stderr, flush=True)
            comparisons.append(one)
    return comparisons, {name: text for name, text in wrong.items() if text}


def parse(description, measured, usual):
    """The command line. `measured` are the corpora that may be named, `usual` those of a run that names none."""
    parser = argparse.ArgumentParser(description=description, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("corpus", nargs="*", help=" ".join(measured) + f" (usually {' '.join(usual)})")
    parser.add_argument("--scale", type=float, default=1.0, help="share of the files of each corpus (1)")
    parser.add_argument("--cap", type=float, default=24, help="GiB of disk that a corpus may take (24)")
    parser.add_argument("--pairs", type=int, default=11, help="pairs of runs (11)")
    parser.add_argument("--seconds", type=float, default=60, help=f"no further pairs after so long, but {compare.FEWEST_PAIRS} (60)")
    parser.add_argument("--state", action="append", choices=("warm", "cold"), help="only this state of the file caches")
    parser.add_argument("--corpora", type=Path, help="where the corpora are or go (build/bench/corpora/scale-F)")
    options = parser.parse_args()
    options.states = options.state or ["warm", "cold"]
    unknown = set(options.corpus) - set(measured)
    if unknown:
        parser.error(f"not measured here: {', '.join(sorted(unknown))}")
    if options.scale <= 0 or options.pairs < 1:
        parser.error("--scale and --pairs must be above 0")
    return options


def main():
    options = parse(__doc__, corpus.MAKERS, BARS)
    for needed in (str(compare.PROGRAM), "time", "du"):
        if not shutil.which(needed):
            print(f"{needed} is not there", file=sys.stderr)
            return 3
    comparisons, wrong = measure(options)
    RESULTS.parent.mkdir(parents=True, exist_ok=True)
    RESULTS.write_text(json.dumps({"scale": options.scale, "wrong": wrong, "machine": compare.facts_of_machine(),
                                   "comparisons": [dataclasses.asdict(one) for one in comparisons]}, indent=1) + "\n",
                       encoding="utf-8")
    print(table(comparisons, options.scale))
    for name, text in wrong.items():
        print(f"\n{name}: **wrong answer**: {text}")
    if not any(one.pairs for one in comparisons) and not wrong:
        print("nothing was measured", file=sys.stderr)
        return 3
    return 0 if not wrong and all(held(one, options.scale) for one in comparisons) else 1


if __name__ == "__main__":
    sys.exit(main())
