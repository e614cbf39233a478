#!/usr/bin/env python3
"""Measures `orrinvale-cli usage` beside `du -sb`, beside `gdu -n`, and with every entry kept beside our own `size`.

    usage.py [CORPUS ...] [--scale F]

Works as sizes.py does: corpora are made once under build/bench/corpora, the answer is checked against a walk of our own before
anything is timed, the two programs run in turn, and what counts is the median of the ratios of the pairs. With the usual limit
nothing of these corpora passes, so the memory is held against that of a run on an empty folder. The table goes to standard
output, the figures to build/bench/usage.json.

Exit status: 0 all bars held, 1 a bar or an answer missed, 2 the command line is wrong, 3 nothing could be measured.
"""
import dataclasses
import json
import shutil
import subprocess
import sys
import tempfile

import compare
import sizes

RESULTS = compare.ROOT / "build/bench/usage.json"
MIB = 1 << 20
USUAL = ("--limit", "1MB", "--depth", "99")
ALL = ("--limit", "0", "--depth", "0")
SIZE = f"{compare.PROGRAM.name} size"


@dataclasses.dataclass
class Row:
    """What one corpus is measured beside, and the highest allowed figures at scale 1."""
    peer: str
    options: tuple
    bars: dict           # state of the caches -> our time to that of the peer
    memory_over: int = 0  # our peak over that on an empty folder, bytes; 0 for no bar
    memory: int = 0       # our peak, bytes; 0 for no bar


BESIDE_ALL = [Row("du -sb", USUAL, {"warm": .60, "cold": .50}, memory_over=12 * MIB), Row("gdu -n", USUAL, {"warm": .50})]
ROWS = {
    "many-small": BESIDE_ALL,
    "wide": BESIDE_ALL,
    "million": [*BESIDE_ALL, Row(SIZE, ALL, {"warm": 1.3}, memory=130_000_000)],
}


def ours(row, folder):
    return [str(compare.PROGRAM), "usage", *row.options, "--json", "--quiet", str(folder)]


def peers(row, folder):
    words = row.peer.split()
    if words[0] == compare.PROGRAM.name:
        words[0] = str(compare.PROGRAM)
    return [*words, str(folder)]


def added_up(folder):
    """Entries of a printed folder, and what they take, those under the limit included; a complaint where they do not add up."""
    entries, size = folder["below"]["entries"], folder["below"]["size"]
    for entry in folder.get("entries", folder.get("children", [])):
        entries += 1 + (added_up(entry) if entry["directory"] else 0)
        size += entry["size"]
    if size != folder["size"]:
        raise ValueError(f"{folder.get('path', 'the whole')} does not add up")
    return entries


def wrong_answer(folder, expected):
    """What is wrong with our answers; empty when nothing is."""
    for options in (USUAL, ("--limit", "0", "--depth", "1000000")):
        command = [str(compare.PROGRAM), "usage", *options, "--json", "--quiet", str(folder)]
        done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
        if done.returncode:
            return f"ended with status {done.returncode}: {done.stderr.decode(errors='replace').strip()[:200]}"
        try:
            told = json.loads(done.stdout)
            entries = added_up(told)
        except (ValueError, KeyError) as error:
            return f"the answer can not be read: {error!r}"
        if told["size"] != expected["size"]:
            return f"size {told['size']} instead of {expected['size']}"
        if "0" in options and entries != expected["files"] + expected["folders"]:
            return f"{entries} entries instead of {expected['files'] + expected['folders']}"
    return ""


def misses(one, row, bare, scale):
    """The bars that did not hold, for people. Bars hold at scale 1 only: on smaller corpora the start of the programs weighs more."""
    if scale != 1 or not one.pairs:
        return []
    out = []
    bar = row.bars.get(one.state)
    if bar and one.ratio() > bar:
        out.append(f"time above {bar:.2f}")
    if row.memory_over and one.memory[0] - bare > row.memory_over:
        out.append(f"more than {row.memory_over / MIB:.0f} MiB over the bare process")
    if row.memory and one.memory[0] > row.memory:
        out.append(f"memory above {row.memory / 1e6:.0f} MB")
    return out


def table(measured, scale):
    lines = ["| corpus | caches | limit | peer | ours (s) | peer (s) | ours / peer (lowest to highest) "
             "| memory, ours over the bare process / peer (MiB) | bars |", "|---|---|---|---|---|---|---|---|---|"]
    for one, row, bare in measured:
        head = f"| {one.corpus} | {one.state} | {row.options[1]} | {one.peer} "
        if one.skipped:
            lines.append(f"{head}| | | *skipped: {one.skipped}* | | |")
            continue
        missed = ", ".join(misses(one, row, bare, scale))
        verdict = "" if scale != 1 else f"**missed**: {missed}" if missed else f"{row.bars[one.state]:.2f} held"
        lines.append(f"{head}| {one.seconds(0):.4f} | {one.seconds(1):.4f} "
                     f"| {one.ratio():.2f} ({min(one.ratios()):.2f} to {max(one.ratios()):.2f}) "
                     f"| {(one.memory[0] - bare) / MIB:.1f} / {one.memory[1] / MIB:.1f} | {verdict} |")
    return "\n".join(lines)


def measure_corpus(name, options, root, no_cold):
    """The comparisons of one corpus, and what is wrong with our answer on it."""
    folder = root / name
    there = compare.prepare(root, name, options)
    reason = there if isinstance(there, str) else ""
    wrong = "" if reason else wrong_answer(folder, sizes.counted(folder))
    if wrong:
        print(f"{name}: wrong answer: {wrong}", file=sys.stderr)
        return [], wrong
    measured = []
    for row in ROWS[name]:
        with tempfile.TemporaryDirectory() as empty:
            bare = compare.peak_memory(ours(row, empty), empty)
        missing = "" if shutil.which(peers(row, folder)[0]) else f"{row.peer} is not there"
        for state in (state for state in options.states if state in row.bars):
            why = reason or missing or (no_cold if state == "cold" else "")
            one = compare.Comparison(name, state, row.peer, skipped=why) if why else sizes.pairs_of(
                name, state, row.peer, (ours(row, folder), peers(row, folder)), options)
            shown = f"skipped: {one.skipped}" if one.skipped else f"{one.ratio():.3f} of {one.seconds(1):.4f} s"
            print(f"{name}, {state}, {row.peer}: {shown}", file=sys.stderr, flush=True)
            measured.append((one, row, bare))
    return measured, ""


def main():
    options = sizes.parse(__doc__, ROWS, ROWS)
    for needed in (str(compare.PROGRAM), "time"):
        if not shutil.which(needed):
            print(f"{needed} is not there", file=sys.stderr)
            return 3
    root = options.corpora or compare.ROOT / "build/bench/corpora" / f"scale-{options.scale:g}"
    no_cold = compare.cold_impossible() if "cold" in options.states else ""
    measured, wrong = [], {}
    for name in options.corpus or ROWS:
        more, fault = measure_corpus(name, options, root, no_cold)
        measured += more
        if fault:
            wrong[name] = fault
    RESULTS.parent.mkdir(parents=True, exist_ok=True)
    RESULTS.write_text(json.dumps({"scale": options.scale, "wrong": wrong, "machine": compare.facts_of_machine(),
                                   "comparisons": [{**dataclasses.asdict(one), "options": row.options, "bare": bare}
                                                   for one, row, bare in measured]}, indent=1) + "\n", encoding="utf-8")
    print(table(measured, options.scale))
    for name, text in wrong.items():
        print(f"\n{name}: **wrong answer**: {text}")
    if not any(one.pairs for one, _, _ in measured) and not wrong:
        print("nothing was measured", file=sys.stderr)
        return 3
    return 1 if wrong or any(misses(one, row, bare, options.scale) for one, row, bare in measured) else 0


if __name__ == "__main__":
    sys.exit(main())
