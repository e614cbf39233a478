#!/usr/bin/env python3
"""Measures the duplicate search beside other duplicate finders on the same folders in the same minutes.

    compare.py [CORPUS ...] [--scale F] [--write-docs]

The corpora are made once under build/bench/corpora (see corpus.py). The answer of our program is checked first: a wrong answer
is not worth a time. Then our program and one peer run in turn, A B A B, with warm and with cold file caches. What counts is
the ratio of each such pair and the median of these ratios, since it does not depend on what else the machine does that minute.
The bars are held against the best peer of each corpus. Everything goes to build/bench/results.json as well.

Exit status: 0 all bars held, 1 a bar or an answer missed, 2 the command line is wrong, 3 nothing could be measured.
"""
import argparse
import dataclasses
import json
import os
import platform
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import corpus

ROOT = Path(__file__).resolve().parents[1]
PROGRAM = ROOT / "build/release/bin/orrinvale-cli"
RESULTS = ROOT / "build/bench/results.json"
DOCS = ROOT / "docs/performance.md"
DROP_CACHES = Path("/proc/sys/vm/drop_caches")
MARKS = ("<!-- duplicates:begin -->", "<!-- duplicates:end -->")
GIB = 1 << 30

# Highest allowed ratio of our time to that of the best peer, at scale 1: corpus -> state -> (bar, best peer when the bar was
# set). The bars stand a little above what a bare prototype reached; corpora without a bar are measured all the same.
BARS = {
    "many-small": {"warm": (0.36, "jdupes -Q"), "cold": (0.32, "rmlint -PP")},
    "same-size": {"warm": (0.34, "rdfind"), "cold": (0.24, "rmlint -PP")},
    "photos": {"warm": (0.38, "jdupes -Q"), "cold": (0.92, "jdupes -Q")},
    "few-huge": {"warm": (0.24, "jdupes -Q"), "cold": (0.65, "rmlint -PP")},
}
BYTES_PER_FILE = 200  # highest peak memory a listed file, over that of our program on an empty folder
FEWEST_PAIRS = 3

# Each does the comparable job: whole tree, links not followed, empty files left out, groups by content, paths printed, nothing
# changed. A name with its hash option trusts the hash as we do; the others compare bytes at the end.
PEERS = {
    "jdupes -Q": ["jdupes", "-q", "-r", "-Q"],
    "jdupes": ["jdupes", "-q", "-r"],
    "rdfind": ["rdfind", "-dryrun", "true", "-checksum", "sha1", "-makeresultsfile", "false"],
    "rmlint -PP": ["rmlint", "-T", "df", "-PP", "-F", "-VVV", "-o", "fdupes"],
    "fdupes": ["fdupes", "-q", "-r", "-n"],
}


class RunFailed(Exception):
    pass


@dataclasses.dataclass
class Comparison:
    """Pairs of runs of our program and a peer; or why there are none."""
    corpus: str
    state: str
    peer: str
    pairs: list = dataclasses.field(default_factory=list)  # (our seconds, the peer's seconds)
    memory: tuple = (0, 0)                                   # peak of ours and of the peer, bytes
    skipped: str = ""

    def ratios(self):
        return [ours / theirs for ours, theirs in self.pairs]

    def ratio(self):
        return statistics.median(self.ratios())

    def seconds(self, side):
        return statistics.median(pair[side] for pair in self.pairs)


# --- running ----------------------------------------------------------------------------------------------------------


def run_timed(argv, where):
    """Wall seconds of one run, output thrown away."""
    start = time.perf_counter_ns()
    process = subprocess.Popen(argv, cwd=where, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)
    _, status, _ = os.wait4(process.pid, 0)
    seconds = (time.perf_counter_ns() - start) / 1e9
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode:
        raise RunFailed(f"ended with status {process.returncode}")
    return seconds


def peak_memory(argv, where):
    """Peak resident bytes of one run. A child of this process would start with the peak of the interpreter, so time(1),
    which is tiny, is the parent and asks wait4."""
    with tempfile.NamedTemporaryFile("r") as answer:
        done = subprocess.run(["time", "-q", "-f", "%M", "-o", answer.name, *argv], cwd=where, stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
        if done.returncode:
            raise RunFailed(f"ended with status {done.returncode}")
        return int(answer.read()) * 1024


def cold_impossible():
    """Why caches can not be emptied here; empty when they can."""
    if os.geteuid() != 0:
        return "only root may empty the file caches"
    try:
        empty_caches()
    except OSError as error:
        return f"the file caches can not be emptied: {error.strerror}"
    return ""


def empty_caches():
    os.sync()
    DROP_CACHES.write_text("3\n", encoding="ascii")


def ours(folder):
    """Without what earlier runs remember, as no peer has it; rescan.py measures that."""
    return [str(PROGRAM), "duplicates", "--json", "--quiet", "--no-cache", str(folder)]


def compare(name, state, peer, folder, options):
    comparison = Comparison(name, state, peer)
    commands = (ours(folder), [*PEERS[peer], str(folder)])
    with tempfile.TemporaryDirectory() as where:
        try:
            # The run for the memory is the one that warms the caches.
            comparison.memory = tuple(peak_memory(command, where) for command in commands)
            deadline = time.monotonic() + options.seconds
            while len(comparison.pairs) < options.pairs:
                if len(comparison.pairs) >= FEWEST_PAIRS and time.monotonic() > deadline:
                    break
                pair = []
                for command in commands:
                    if state == "cold":
                        empty_caches()
                    pair.append(run_timed(command, where))
                comparison.pairs.append(tuple(pair))
        except RunFailed as error:
            comparison.pairs.clear()
            comparison.skipped = str(error)
    return comparison


# --- the answer -------------------------------------------------------------------------------------------------------


def inodes(group):
    """The distinct files behind the leaves of a group: hard links to one file are one file."""
    found = set()
    for leaf in group["leaves"]:
        path = bytes.fromhex(leaf["pathHex"]) if "pathHex" in leaf else os.fsencode(leaf["path"])
        facts = os.lstat(path)
        found.add((facts.st_dev, facts.st_ino))
    return found


def answer_of(document):
    """What a duplicate search found, in the terms of the expected answer."""
    counts = [(len(inodes(group)), group["leaves"][0]["size"]) for group in document["groups"] if not group["bundle"]]
    return {"groups": sum(count > 1 for count, _ in counts),
            "files_in_groups": sum(count for count, _ in counts if count > 1),
            "reclaimable": sum((count - 1) * size for count, size in counts)}


def wrong_answer(folder, expected):
    """What is wrong with our answer on a corpus; empty when nothing is."""
    done = subprocess.run(ours(folder), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
    if done.returncode:
        return f"ended with status {done.returncode}: {done.stderr.decode(errors='replace').strip()[:200]}"
    try:
        document = json.loads(done.stdout)
        found = answer_of(document)
        told = document["summary"]["reclaimable"]
    except (ValueError, KeyError, IndexError, OSError) as error:
        return f"the answer can not be read: {error!r}"
    wrong = [f"{key} {found[key]} instead of {expected[key]}" for key in found if found[key] != expected[key]]
    if told != expected["reclaimable"]:
        wrong.append(f"summary.reclaimable {told} instead of {expected['reclaimable']}")
    return ", ".join(wrong)


# --- corpora ----------------------------------------------------------------------------------------------------------


def prepare(root, name, options):
    """The expected answer of a corpus, made if it is not there; or the reason why it is left out, as a string."""
    there = corpus.expectation(root, name)
    if there is not None and there.get("scale", options.scale) != options.scale:
        return f"{root / name} has scale {there['scale']}"
    if there is None:
        need = int(corpus.DISK_BYTES[name] * options.scale)
        root.mkdir(parents=True, exist_ok=True)
        if need > options.cap * GIB:
            return f"takes {need / GIB:.1f} GiB, more than --cap {options.cap:g}"
        free = shutil.disk_usage(root).free
        if need + 2 * GIB > free:
            return f"takes {need / GIB:.1f} GiB and 2 GiB should stay free; {free / GIB:.1f} GiB are"
        print(f"making {name} ...", file=sys.stderr, flush=True)
        try:
            there = corpus.make(root, name, options.scale)
        except FileExistsError as error:
            return str(error)
        os.sync()
    return there


# --- report -----------------------------------------------------------------------------------------------------------


def facts_of_machine():
    versions = {}
    for argv in PEERS.values():
        answer = subprocess.run(["dpkg-query", "-W", "-f", "${Version}", argv[0]], stdout=subprocess.PIPE,
                                stderr=subprocess.DEVNULL, check=False) if shutil.which("dpkg-query") else None
        versions[argv[0]] = answer.stdout.decode() if answer and answer.returncode == 0 else "unknown"
    return {"processors": len(os.sched_getaffinity(0)), "kernel": platform.release(), "machine": platform.machine(),
            "date": time.strftime("%Y-%m-%d"), "peers": versions}


def verdicts(comparisons, scale):
    """(corpus, state) -> (highest ratio to a peer, that peer, bar, held?) for what was measured. The peer with the highest
    ratio is the best one. Bars hold at scale 1 only: on smaller corpora the start of the programs weighs more."""
    found = {}
    for comparison in comparisons:
        key = comparison.corpus, comparison.state
        if comparison.pairs and (key not in found or comparison.ratio() > found[key][0]):
            bar = BARS.get(comparison.corpus, {}).get(comparison.state, (None, None))[0] if scale == 1 else None
            found[key] = comparison.ratio(), comparison.peer, bar, bar is None or comparison.ratio() <= bar
    return found


def table(comparisons, scale):
    best = verdicts(comparisons, scale)
    lines = ["| corpus | caches | ours (s) | peer | peer (s) | ours / peer (lowest to highest) | bar "
             "| memory, ours / peer (MiB) |",
             "|---|---|---|---|---|---|---|---|"]
    for one in comparisons:
        if one.skipped:
            lines.append(f"| {one.corpus} | {one.state} | | {one.peer} | | *skipped: {one.skipped}* | | |")
            continue
        _, best_peer, bar, held = best[one.corpus, one.state]
        verdict = f"{bar:.2f} {'held' if held else '**missed**'}" if bar and one.peer == best_peer else ""
        emphasis = "**" if one.peer == best_peer else ""
        lines.append(f"| {one.corpus} | {one.state} | {one.seconds(0):.3f} "
                     f"| {emphasis}{one.peer}{emphasis} | {one.seconds(1):.3f} "
                     f"| {one.ratio():.2f} ({min(one.ratios()):.2f} to {max(one.ratios()):.2f}) | {verdict} "
                     f"| {one.memory[0] / 2**20:.1f} / {one.memory[1] / 2**20:.1f} |")
    return "\n".join(lines)


def memory_lines(comparisons, result):
    """(text, held?) for the memory of each corpus. Judged at scale 1 and on 10,000 files or more: below that the run-time
    library and the buffers of the readers are all there is."""
    for name, files in result["listed"].items():
        measured = [one for one in comparisons if one.corpus == name and one.pairs]
        if not measured:
            continue
        peak, bare = max(one.memory[0] for one in measured), result["bare"]
        jdupes = min((one.memory[1] for one in measured if one.peer.startswith("jdupes")), default=None)
        per_file = max(0, peak - bare) / files
        text = f"{name}: peak memory {peak / 2**20:.1f} MiB"
        if files >= 10_000:
            text += f", {per_file:.0f} bytes a file over the {bare / 2**20:.1f} MiB of an empty folder"
        if jdupes is not None:
            text += f"; jdupes {jdupes / 2**20:.1f} MiB"
        held = True
        if result["scale"] == 1 and files >= 10_000:
            held = per_file <= BYTES_PER_FILE and (jdupes is None or peak <= jdupes)
            text += f"; at most {BYTES_PER_FILE} a file and no more than jdupes: {'held' if held else '**missed**'}"
        yield text, held


def write_docs(text):
    document = DOCS.read_text(encoding="utf-8")
    begin, end = (document.index(mark) for mark in MARKS)
    DOCS.write_text(document[:begin + len(MARKS[0])] + "\n" + text + "\n" + document[end:], encoding="utf-8")


def render(result):
    comparisons = [Comparison(**one) for one in result["comparisons"]]
    machine = result["machine"]
    versions = ", ".join(f"{name} {version}" for name, version in machine["peers"].items())
    lines = [f"Measured on {machine['date']}: {machine['processors']} processors, Linux {machine['kernel']}, "
             f"scale {result['scale']:g}; {versions}.", "", table(comparisons, result["scale"]), ""]
    lines += [f"- {text}" for text, _ in memory_lines(comparisons, result)]
    lines += [f"- {name}: **wrong answer**: {wrong}" for name, wrong in result["wrong"].items()]
    lines += [f"- {name}: *skipped: {reason}*" for name, reason in result["left_out"].items()]
    return "\n".join(lines)


def holds(result):
    comparisons = [Comparison(**one) for one in result["comparisons"]]
    return (not result["wrong"] and all(held for *_, held in verdicts(comparisons, result["scale"]).values())
            and all(held for _, held in memory_lines(comparisons, result)))


# --- the whole --------------------------------------------------------------------------------------------------------


def measure(options):
    result = {"machine": facts_of_machine(), "scale": options.scale, "comparisons": [], "listed": {}, "wrong": {},
              "left_out": {}}
    root = options.corpora or ROOT / "build/bench/corpora" / f"scale-{options.scale:g}"
    with tempfile.TemporaryDirectory() as empty:
        result["bare"] = peak_memory(ours(empty), empty)
    no_cold = cold_impossible() if "cold" in options.states else ""
    for name in options.corpus or corpus.MAKERS:
        expected = prepare(root, name, options)
        if isinstance(expected, str):
            print(f"{name}: skipped: {expected}", file=sys.stderr)
            result["left_out"][name] = expected
            continue
        wrong = wrong_answer(root / name, expected)
        if wrong:
            print(f"{name}: wrong answer: {wrong}", file=sys.stderr)
            result["wrong"][name] = wrong
            continue
        result["listed"][name] = expected["files"]
        for state in options.states:
            for peer, argv in PEERS.items():
                if options.peer and peer not in options.peer:
                    continue
                missing = "" if shutil.which(argv[0]) else f"{argv[0]} is not installed"
                reason = missing or (no_cold if state == "cold" else "")
                one = Comparison(name, state, peer, skipped=reason) if reason else compare(
                    name, state, peer, root / name, options)
                shown = f"skipped: {one.skipped}" if one.skipped else f"{one.ratio():.3f} of {one.seconds(1):.3f} s"
                print(f"{name}, {state}, {peer}: {shown}", file=sys.stderr, flush=True)
                result["comparisons"].append(dataclasses.asdict(one))
    return result


def parse():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("corpus", nargs="*", help=" ".join(corpus.MAKERS))
    parser.add_argument("--scale", type=float, default=1.0, help="share of the files of each corpus (1)")
    parser.add_argument("--cap", type=float, default=24, help="GiB of disk that a corpus may take (24)")
    parser.add_argument("--pairs", type=int, default=7, help="pairs of runs (7)")
    parser.add_argument("--seconds", type=float, default=60, help=f"no further pairs after so long, but {FEWEST_PAIRS} (60)")
    parser.add_argument("--peer", action="append", choices=PEERS, help="only this peer; may be repeated")
    parser.add_argument("--state", action="append", choices=("warm", "cold"), help="only this state of the file caches")
    parser.add_argument("--corpora", type=Path, help="where the corpora are or go (build/bench/corpora/scale-F)")
    parser.add_argument("--write-docs", action="store_true", help="put the table into docs/performance.md")
    parser.add_argument("--no-run", action="store_true", help="use the figures of the last run")
    options = parser.parse_args()
    options.states = options.state or ["warm", "cold"]
    unknown = set(options.corpus) - set(corpus.MAKERS)
    if unknown:
        parser.error(f"no corpus is called {', '.join(sorted(unknown))}")
    if options.scale <= 0 or options.pairs < 1:
        parser.error("--scale and --pairs must be above 0")
    return options


def main():
    options = parse()
    if options.no_run:
        result = json.loads(RESULTS.read_text(encoding="utf-8"))
    else:
        for needed in (str(PROGRAM), "time"):
            if not shutil.which(needed):
                print(f"{needed} is not there; ./dev bench duplicates builds and installs what is needed", file=sys.stderr)
                return 3
        result = measure(options)
        RESULTS.parent.mkdir(parents=True, exist_ok=True)
        RESULTS.write_text(json.dumps(result, indent=1) + "\n", encoding="utf-8")
    text = render(result)
    print(text)
    if options.write_docs:
        write_docs(text)
    if not any(one["pairs"] for one in result["comparisons"]) and not result["wrong"]:
        print("nothing was measured", file=sys.stderr)
        return 3
    return 0 if holds(result) else 1


if __name__ == "__main__":
    sys.exit(main())
