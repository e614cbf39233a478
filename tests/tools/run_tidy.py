#!/usr/bin/env python3
"""Runs the static analysis over sources, in the groups that are compiled as one: a group of eight costs little more than one source alone,
since most of the time goes into the headers that all of them read.

    run_tidy.py [--jobs N] [--minutes M] BUILD SCRATCH [SOURCE...]

BUILD is a folder with the compile commands, made in groups or not; SCRATCH is written. Sources are relative to the current folder; without
any, all are looked at. Prints each finding once, however many groups include its header, then a line that tells the count. What has not
begun when the minutes are over, or has not ended 20 s later, is counted as left out. Status 1 if there is a finding.
"""
import argparse
import concurrent.futures
import json
import os
import re
import subprocess
import sys
import time
from pathlib import Path

FINDING = re.compile(r"^/[^:]+:\d+:\d+: (?:error|warning): ")
INCLUDED = re.compile(r'^#include "([^"]+)"', re.M)
# A group includes sources, which is not to be told, and whose functions are followed path by path only where headers' are. Options that only GCC knows are not this tool's concern, and neither is what the
# compiler warns of: the build fails at that.
OPTIONS = ["--quiet", "--extra-arg=-Wno-unknown-warning-option", "--extra-arg=-Wno-error",
           "--extra-arg=-Xclang", "--extra-arg=-analyzer-opt-analyze-headers"]
UNWANTED = "--checks=-bugprone-suspicious-include"
# A test may start a shell, make bad names and large texts, copy what it likes, and share fixtures by a header of one program.
UNWANTED_IN_TESTS = UNWANTED + (",-bugprone-string-constructor,-cert-env33-c,-google-build-namespaces,-google-explicit-constructor"
                                ",-misc-definitions-in-headers,-misc-misleading-bidirectional,-performance-*"
                                ",-readability-inconsistent-declaration-parameter-name,-readability-static-accessed-through-instance")


def grouped_commands(build, scratch):
    """The compile commands in groups, without the precompiled headers, which are in the form of another compiler. Where the build is not
    in groups, those that CMake would write for it; what is generated for the sources is the build's own."""
    scratch.mkdir(parents=True, exist_ok=True)
    commands = build / "compile_commands.json"
    if "ORRINVALE_GROUPS:BOOL=ON" not in (build / "CMakeCache.txt").read_text(encoding="utf-8"):
        groups = scratch / "groups"
        subprocess.run(["cmake", "--preset", "release", "-B", str(groups), "-DORRINVALE_TESTS=ON", "-DORRINVALE_GROUPS=ON"],
                       stdout=subprocess.DEVNULL, check=True)
        commands = groups / "compile_commands.json"
        generated = re.compile(re.escape(str(groups)) + r"/(?!\S*/Unity/)")
    else:
        generated = None
    entries = json.loads(commands.read_text(encoding="utf-8"))
    for entry in entries:
        command = re.sub(r" -Winvalid-pch\b| -include \S*/cmake_pch\.hxx", "", entry["command"])
        entry["command"] = generated.sub(f"{build}/", command) if generated else command
    (scratch / "compile_commands.json").write_text(json.dumps(entries), encoding="utf-8")
    return [entry["file"] for entry in entries if "/cmake_pch." not in entry["file"] and "_autogen/" not in entry["file"]]


def sources_of(unit):
    """The sources that a compiled file stands for: those that a group includes, or itself."""
    if "/Unity/" not in unit:
        return [unit]
    return INCLUDED.findall(Path(unit).read_text(encoding="utf-8"))


class Analysis:
    def __init__(self, scratch, minutes):
        self.scratch = scratch
        self.end = time.monotonic() + 60 * minutes
        self.left = []
        self.findings = {}

    def look(self, unit):
        rest = self.end - time.monotonic()
        if rest <= 0:
            self.left.append(unit)
            return
        unwanted = UNWANTED_IN_TESTS if "/tests/" in unit else UNWANTED
        try:
            done = subprocess.run(["nice", "clang-tidy", "-p", str(self.scratch), *OPTIONS, unwanted, unit],
                                  capture_output=True, text=True, errors="replace", timeout=min(rest + 20, 3600), check=False)
        except subprocess.TimeoutExpired:
            self.left.append(unit)
            return
        if done.returncode and ": error: " not in done.stdout:  # it ended by itself
            self.findings[unit] = f"{unit}: status {done.returncode}\n{done.stderr}\n"
        first = None
        for line in done.stdout.splitlines():
            if FINDING.match(line):
                first = None if line in self.findings else line
                if first:
                    self.findings[first] = ""
            if first:
                self.findings[first] += line + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("build", type=Path)
    parser.add_argument("scratch", type=Path)
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--minutes", type=float, default=1e5)
    parser.add_argument("sources", nargs="*")
    options = parser.parse_args()
    units = grouped_commands(options.build.resolve(), options.scratch.resolve())
    if options.sources:
        place = {os.path.abspath(source): number for number, source in reversed(list(enumerate(options.sources)))}
        order = {unit: min((place[source] for source in sources_of(unit) if source in place), default=None) for unit in units}
        units = sorted((unit for unit in units if order[unit] is not None), key=order.get)
    if not units:
        print("none of the sources named is compiled" if options.sources else "no compile commands")
        return not options.sources
    analysis = Analysis(options.scratch.resolve(), options.minutes)
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        list(pool.map(analysis.look, units))
    print("".join(analysis.findings.values()), end="")
    looked = len(units) - len(analysis.left)
    named = [os.path.relpath(source) for unit in analysis.left for source in sources_of(unit)]
    rest = f", the time was over before {' '.join(named[:5])}{' and others' if len(named) > 5 else ''}" if named else ""
    print(f"{looked} of {len(units)} groups{rest}" if named else f"{len(units)} groups")
    return bool(analysis.findings)


if __name__ == "__main__":
    sys.exit(main())
