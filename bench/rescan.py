#!/usr/bin/env python3
"""Measures a search for duplicates that remembers what it read beside one that does not (--no-cache), on the same folders.

    rescan.py [CORPUS ...] [--scale F]

Three pairs for each corpus: a second search with *nothing* changed, one with 1 % of the files *changed*, and the *first* one, which finds
nothing remembered and writes it. What is remembered lies in a folder of its own and is put back before each run. A file counts as changed
when its time of change is new, so that the corpus and its answer stay what they are. Otherwise as compare.py; the table goes to standard
output, the figures to build/bench/rescan.json.

Exit status: 0 all bars held, 1 a bar or an answer missed, 2 the command line is wrong, 3 nothing could be measured.
"""
import dataclasses
import json
import os
import random
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import compare
import sizes

RESULTS = compare.ROOT / "build/bench/rescan.json"
# Highest allowed ratio to the search without, at scale 1. One with changes may take this much more than one without.
BARS = {
    "many-small": {"warm": 0.30, "cold": 0.30},
    "photos": {"warm": 0.15, "cold": 0.05},
}
CHANGED_MORE = 0.08
FIRST = 1.05
SETTLING = 61  # seconds after which a change is trusted to show in the times
KINDS = ("nothing", "changed", "first")


def search(folder, *options):
    return [str(compare.PROGRAM), "duplicates", "--json", "--quiet", *options, str(folder)]


def change_some(folder):
    """Gives every hundredth file a new time of change."""
    some = random.Random(1)
    for parent, _, names in os.walk(folder):
        for name in names:
            if some.random() < 0.01:
                path = os.path.join(parent, name)
                os.chmod(path, os.stat(path).st_mode & 0o7777)
    time.sleep(SETTLING)


class Memory:
    """What searches remember, as a search of this folder leaves it."""

    def __init__(self, folder, home):
        self.file = Path(home) / "com.kelpford.Orrinvale/file-hashes"
        self.saved = Path(home) / "saved"
        self.folder = folder
        os.environ["XDG_CACHE_HOME"] = str(home)

    def learn(self):
        """The answer of a search that reads everything and remembers it."""
        self.file.unlink(missing_ok=True)
        answer = subprocess.run(search(self.folder), stdin=subprocess.DEVNULL, capture_output=True, check=True).stdout
        shutil.copyfile(self.file, self.saved)
        return answer

    def put_back(self, kind):
        if kind == "first":
            self.file.unlink(missing_ok=True)
            return
        if kind == "changed":
            change_some(self.folder)
        shutil.copyfile(self.saved, self.file)
        self.file.chmod(0o600)
        os.sync()


def wrong_answer(memory, folder):
    """What is wrong with the answers; empty when nothing is."""
    plain = subprocess.run(search(folder, "--no-cache"), stdin=subprocess.DEVNULL, capture_output=True, check=True).stdout
    if memory.learn() != plain:
        return "a first search answers something else"
    for kind in KINDS:
        memory.put_back(kind)
        if subprocess.run(search(folder), stdin=subprocess.DEVNULL, capture_output=True, check=True).stdout != plain:
            return f"a search answers something else ({kind})"
    memory.learn()
    return ""


def pairs_of(name, state, kind, memory, options):
    comparison = compare.Comparison(name, state, kind)
    commands = (search(memory.folder), search(memory.folder, "--no-cache"))
    with tempfile.TemporaryDirectory() as where:
        memory.put_back(kind)
        comparison.memory = tuple(compare.peak_memory(command, where) for command in commands)
        deadline = time.monotonic() + options.seconds
        while len(comparison.pairs) < options.pairs:
            if len(comparison.pairs) >= compare.FEWEST_PAIRS and time.monotonic() > deadline:
                break
            memory.put_back(kind)
            pair = []
            for command in commands:
                if state == "cold":
                    compare.empty_caches()
                pair.append(compare.run_timed(command, where))
            comparison.pairs.append(tuple(pair))
    return comparison


def bar_of(one, scale):
    if scale != 1:
        return None
    if one.peer == "first":
        return FIRST
    return BARS[one.corpus][one.state] + (CHANGED_MORE if one.peer == "changed" else 0)


def held(one, scale):
    bar = bar_of(one, scale)
    return not one.pairs or bar is None or one.ratio() <= bar


def table(comparisons, scale):
    lines = ["| corpus | caches | changed | with (s) | without (s) | with / without (lowest to highest) | bar | memory, with / without (MiB) |",
             "|---|---|---|---|---|---|---|---|"]
    words = {"nothing": "nothing", "changed": "1 %", "first": "the first search"}
    for one in comparisons:
        if one.skipped:
            lines.append(f"| {one.corpus} | {one.state} | {words[one.peer]} | | | *skipped: {one.skipped}* | | |")
            continue
        bar = bar_of(one, scale)
        verdict = f"{bar:.2f} {'held' if held(one, scale) else '**missed**'}" if bar else ""
        lines.append(f"| {one.corpus} | {one.state} | {words[one.peer]} | {one.seconds(0):.3f} | {one.seconds(1):.3f} "
                     f"| {one.ratio():.3f} ({min(one.ratios()):.3f} to {max(one.ratios()):.3f}) | {verdict} "
                     f"| {one.memory[0] / 2**20:.1f} / {one.memory[1] / 2**20:.1f} |")
    return "\n".join(lines)


def measure(options):
    comparisons, wrong = [], {}
    root = options.corpora or compare.ROOT / "build/bench/corpora" / f"scale-{options.scale:g}"
    no_cold = compare.cold_impossible() if "cold" in options.states else ""
    for name in options.corpus or BARS:
        expected = compare.prepare(root, name, options)
        with tempfile.TemporaryDirectory(dir=root if root.is_dir() else None) as home:
            memory = Memory(root / name, home)
            reason = expected if isinstance(expected, str) else ""
            if not reason:
                time.sleep(SETTLING)
                wrong[name] = wrong_answer(memory, root / name)
            for state in options.states:
                why = reason or wrong[name] or (no_cold if state == "cold" else "")
                for kind in KINDS:
                    one = compare.Comparison(name, state, kind, skipped=why) if why else pairs_of(name, state, kind, memory, options)
                    shown = f"skipped: {why}" if why else f"{one.ratio():.3f} of {one.seconds(1):.3f} s"
                    print(f"{name}, {state}, {kind}: {shown}", file=sys.stderr, flush=True)
                    comparisons.append(one)
    return comparisons, {name: text for name, text in wrong.items() if text}


def main():
    options = sizes.parse(__doc__, BARS, BARS)
    for needed in (str(compare.PROGRAM), "time"):
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
