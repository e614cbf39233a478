#!/usr/bin/env python3
"""Measures `orrinvale-cli large`, with the whole tree in memory, beside `gdu -n` and beside our own `size`, which keeps nothing.

    large.py [CORPUS ...] [--scale F]

Works as sizes.py does: corpora are made once under build/bench/corpora, the answer is checked against a walk of our own before
anything is timed, the two programs run in turn, and what counts is the median of the ratios of the pairs. The memory an entry
takes is the peak over that of a run on an empty folder, less the names. What the list of largest files (`large --flat`) takes is the
difference of runs with and without it, in processor time, since it is made by one thread after the scan, and in bytes. The table goes to standard output, the figures to
build/bench/large.json.

Exit status: 0 all bars held, 1 a bar or an answer missed, 2 the command line is wrong, 3 nothing could be measured.
"""
import dataclasses
import json
import os
import shutil
import statistics
import subprocess
import sys
import tempfile

import compare
import sizes

RESULTS = compare.ROOT / "build/bench/large.json"
MIB = 1 << 20


@dataclasses.dataclass
class Row:
    """One corpus, what it is measured beside, and the highest allowed figures at scale 1."""
    peer: str
    bars: dict             # state of the caches -> our time to that of the peer
    memory_share: float = 0  # our peak to that of the peer; 0 for no bar
    memory: int = 0          # our peak, bytes; 0 for no bar


# gdu keeps a tree as we do, on as many threads. Beside `size` the price of keeping the tree shows.
ROWS = {
    "many-small": Row("gdu -n", {"warm": .65, "cold": .65}, memory_share=.2),
    "million": Row(f"{compare.PROGRAM.name} size", {"warm": 1.3}, memory=130_000_000),
}
BYTES_PER_ENTRY = 96
# Of the list of a million files over the tree: seconds of processor time, and bytes a file.
LIST_SECONDS = .2
LIST_BYTES = 16
LISTS = {"by size": [], "by name": ["--sort", "name"], "by opening": ["--sort", "opened", "--unopened", "0d"], "of a kind": ["--kind", "others"]}


def ours(folder):
    return [str(compare.PROGRAM), "large", "--depth", "0", "--json", "--quiet", str(folder)]


def peers(row, folder):
    words = row.peer.split()
    if words[0] == compare.PROGRAM.name:
        words[0] = str(compare.PROGRAM)
    return [*words, str(folder)]


def name_bytes(folder):
    """What the names of all entries take, each with its end."""
    return sum(len(os.fsencode(name)) + 1 for _, folders, files in os.walk(folder) for name in folders + files)


def wrong_answer(folder, expected):
    """What is wrong with our answer; empty when nothing is."""
    told = []
    for options in (["--depth", "0", "--json"], ["--depth", "1000000", "-0"]):
        command = [str(compare.PROGRAM), "large", "--quiet", *options, str(folder)]
        done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
        if done.returncode:
            return f"ended with status {done.returncode}: {done.stderr.decode(errors='replace').strip()[:200]}"
        told.append(done.stdout)
    try:
        size, entries = json.loads(told[0])["size"], told[1].count(b"\0")
    except (ValueError, KeyError) as error:
        return f"the answer can not be read: {error!r}"
    if size != expected["size"]:
        return f"size {size} instead of {expected['size']}"
    count = expected["files"] + expected["folders"]
    return "" if entries == count else f"{entries} entries instead of {count}"


def bytes_per_entry(one, folder, expected):
    with tempfile.TemporaryDirectory() as empty:
        bare = compare.peak_memory(ours(empty), empty)
    return (one.memory[0] - bare - name_bytes(folder)) / (expected["files"] + expected["folders"])


def processor_time(argv):
    process = subprocess.Popen(argv, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    _, status, used = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if status:
        raise compare.RunFailed(f"ended with status {process.returncode}")
    return used.ru_utime  # the kernel's share is the scan's, and scatters by more than all of the list


def cost_of_list(folder, options, runs=9):
    """The median of the seconds that the list takes over the tree with nothing printed, and its bytes."""
    listed = [str(compare.PROGRAM), "large", "--flat", "-0", "--top", "5000", *options, "--quiet", str(folder)]
    pairs = [processor_time(listed) - processor_time(ours(folder)) for _ in range(runs)]
    return statistics.median(pairs), max(pairs), compare.peak_memory(listed, folder) - compare.peak_memory(ours(folder), folder)


def lists_of(folder, count):
    """A table of what the lists take, and whether a bar was missed."""
    lines, missed = ["| list of a million files | seconds over the tree (highest) | bytes a file over the tree |", "|---|---|---|"], False
    for name, options in LISTS.items():
        seconds, highest, size = cost_of_list(folder, options)
        missed = missed or seconds > LIST_SECONDS or size / count > LIST_BYTES + 1  # the pages that are read for printing
        lines.append(f"| {name} | {seconds:.3f} ({highest:.3f}) | {size / count:.1f} |")
    return "\n".join(lines), missed


def misses(one, per_entry, scale):
    """The bars that did not hold, for people. Bars hold at scale 1 only: on smaller corpora the start of the programs weighs more."""
    row = ROWS.get(one.corpus)
    if scale != 1 or row is None or not one.pairs:
        return []
    out = []
    bar = row.bars.get(one.state)
    if bar and one.ratio() > bar:
        out.append(f"time above {bar:.2f}")
    if row.memory_share and one.memory[0] > row.memory_share * one.memory[1]:
        out.append(f"memory above {row.memory_share:.2f} of the peer's")
    if row.memory and one.memory[0] > row.memory:
        out.append(f"memory above {row.memory / 1e6:.0f} MB")
    if per_entry > BYTES_PER_ENTRY:
        out.append(f"more than {BYTES_PER_ENTRY} bytes an entry")
    return out


def table(measured, scale):
    lines = ["| corpus | caches | peer | ours (s) | peer (s) | ours / peer (lowest to highest) | memory, ours / peer (MiB) "
             "| bytes an entry besides its name | bars |", "|---|---|---|---|---|---|---|---|---|"]
    for one, per_entry in measured:
        if one.skipped:
            lines.append(f"| {one.corpus} | {one.state} | {one.peer} | | | *skipped: {one.skipped}* | | | |")
            continue
        missed = ", ".join(misses(one, per_entry, scale))
        verdict = "" if scale != 1 else f"**missed**: {missed}" if missed else "held"
        lines.append(f"| {one.corpus} | {one.state} | {one.peer} | {one.seconds(0):.4f} | {one.seconds(1):.4f} "
                     f"| {one.ratio():.2f} ({min(one.ratios()):.2f} to {max(one.ratios()):.2f}) "
                     f"| {one.memory[0] / MIB:.1f} / {one.memory[1] / MIB:.1f} | {per_entry:.0f} | {verdict} |")
    return "\n".join(lines)


def measure(options):
    measured, wrong = [], {}
    root = options.corpora or compare.ROOT / "build/bench/corpora" / f"scale-{options.scale:g}"
    no_cold = compare.cold_impossible() if "cold" in options.states else ""
    for name in options.corpus or ROWS:
        row, folder = ROWS[name], root / name
        there = compare.prepare(root, name, options)
        reason = there if isinstance(there, str) else ""
        expected = None
        if not reason:
            expected = sizes.counted(folder)
            wrong[name] = wrong_answer(folder, expected)
            if wrong[name]:
                print(f"{name}: wrong answer: {wrong[name]}", file=sys.stderr)
                continue
        if not reason and not shutil.which(peers(row, folder)[0]):
            reason = f"{row.peer} is not there"
        for state in (state for state in options.states if state in row.bars):
            why = reason or (no_cold if state == "cold" else "")
            one = compare.Comparison(name, state, row.peer, skipped=why) if why else sizes.pairs_of(
                name, state, row.peer, (ours(folder), peers(row, folder)), options)
            per_entry = 0 if one.skipped else bytes_per_entry(one, folder, expected)
            shown = f"skipped: {one.skipped}" if one.skipped else f"{one.ratio():.3f} of {one.seconds(1):.4f} s"
            print(f"{name}, {state}: {shown}", file=sys.stderr, flush=True)
            measured.append((one, per_entry))
    return measured, {name: text for name, text in wrong.items() if text}


def main():
    options = sizes.parse(__doc__, ROWS, ROWS)
    for needed in (str(compare.PROGRAM), "time"):
        if not shutil.which(needed):
            print(f"{needed} is not there", file=sys.stderr)
            return 3
    measured, wrong = measure(options)
    RESULTS.parent.mkdir(parents=True, exist_ok=True)
    RESULTS.write_text(json.dumps({"scale": options.scale, "wrong": wrong, "machine": compare.facts_of_machine(),
                                   "comparisons": [{**dataclasses.asdict(one), "bytes_per_entry": per_entry}
                                                   for one, per_entry in measured]}, indent=1) + "\n", encoding="utf-8")
    print(table(measured, options.scale))
    for name, text in wrong.items():
        print(f"\n{name}: **wrong answer**: {text}")
    if not any(one.pairs for one, _ in measured) and not wrong:
        print("nothing was measured", file=sys.stderr)
        return 3
    missed = False
    million = (options.corpora or compare.ROOT / "build/bench/corpora" / f"scale-{options.scale:g}") / "million"
    if options.scale == 1 and "million" in (options.corpus or ROWS) and million.is_dir():
        text, missed = lists_of(million, 1_000_000)
        print(f"\n{text}\n\n{'**missed**' if missed else 'held'}: {LIST_SECONDS} s, {LIST_BYTES} bytes")
    return 1 if wrong or missed or any(misses(one, per_entry, options.scale) for one, per_entry in measured) else 0


if __name__ == "__main__":
    sys.exit(main())
