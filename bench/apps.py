#!/usr/bin/env python3
"""Measures `orrinvale-cli apps` on a machine of its own making: 2,000 packages with their lists, and 100 desktop entries.

    apps.py [--rounds N]

dpkg's folder is made anew on the disk and shown in the place of the machine's in a name space of mounts that nobody else sees; entries and
programs are named by the environment. The answer is checked first, and that no process is started. Warm is the median of N (15)
rounds; cold the median of 3, each after the system forgot all files, as root alone.

Exit status: 0 all bars held, 1 a bar or an answer missed, 2 the command line is wrong, 3 nothing could be measured.
"""
import argparse
import json
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import compare

PACKAGES, ENTRIES, FILES_EACH = 2_000, 100, 250
BARS = {"warm": .3, "cold": 1.5}


def make(root):
    """The made-up machine. Every twentieth package has an application."""
    info = root / "dpkg/info"
    for folder in (info, root / "bin", root / "share/applications", root / "home"):
        folder.mkdir(parents=True)
    status = []
    for number in range(PACKAGES):
        name = f"package-{number:04}"
        files = [f"/usr/share/{name}/folder-{i % 7}/a-file-of-the-package-{i}" for i in range(FILES_EACH)]
        if number % (PACKAGES // ENTRIES) == 0:
            program = root / "bin" / f"program-{number}"
            program.write_text("#!/bin/sh\n")
            program.chmod(0o755)
            entry = root / f"share/applications/org.example.App{number}.desktop"
            files += [str(program), str(entry)]
            entry.write_text(
                f"[Desktop Entry]\nType=Application\nName=Application {number}\nExec={program.name} %U\n")
        (info / f"{name}.list").write_text("/.\n" + "\n".join(files) + "\n")
        needs = ", ".join(f"package-{(number * 7 + i) % PACKAGES:04} (>= 1)" for i in range(6))
        status.append(f"Package: {name}\nStatus: install ok installed\nPriority: optional\nInstalled-Size: 100\nArchitecture: amd64\n"
                      f"Version: 1.0\nDepends: {needs}\nDescription: a package\n" + " Words about it.\n" * 8)
    (root / "dpkg/status").write_text("\n".join(status))


def environment(root):
    return {"PATH": f"{root}/bin:/usr/bin:/bin", "HOME": f"{root}/home", "XDG_DATA_DIRS": f"{root}/share", "LC_ALL": "C.UTF-8"}


def run(root, *before):
    command = [*before, str(compare.PROGRAM), "apps", "--json"]
    return subprocess.run(command, env=environment(root), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)


def wrong_answer(root):
    """What is wrong with the answer; empty when nothing is."""
    done = run(root)
    if done.returncode:
        return f"ended with status {done.returncode}: {done.stderr.decode(errors='replace')[:200]}"
    found = sum(app["kind"] == "deb" for app in json.loads(done.stdout)["applications"])
    if found != ENTRIES:
        return f"{found} applications in the place of {ENTRIES}"
    if shutil.which("strace"):
        with tempfile.NamedTemporaryFile("r") as trace:
            run(root, "strace", "-f", "-e", "trace=execve", "-o", trace.name)
            started = sum("execve(" in line for line in trace)
        if started != 1:
            return f"{started - 1} processes were started"
    return ""


def seconds(root):
    begin = time.perf_counter()
    run(root)
    return time.perf_counter() - begin


def measure(root, rounds):
    subprocess.run(["mount", "--bind", str(root / "dpkg"), "/var/lib/dpkg"], check=True)
    wrong = wrong_answer(root)
    if wrong:
        print(f"apps: {wrong}", file=sys.stderr)
        return 1
    times = {"warm": [seconds(root) for _ in range(rounds)], "cold": []}
    for _ in range(3):
        os.sync()
        Path("/proc/sys/vm/drop_caches").write_text("3")
        times["cold"].append(seconds(root))
    status = 0
    for state, all_of_it in times.items():
        median = statistics.median(all_of_it)
        held = median <= BARS[state]
        status |= not held
        print(f"{state}: {median:.3f} s ({min(all_of_it):.3f} to {max(all_of_it):.3f}), bar {BARS[state]} s: {'held' if held else 'MISSED'}")
    return status


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--rounds", type=int, default=15)
    parser.add_argument("--inside", type=Path, help=argparse.SUPPRESS)
    options = parser.parse_args()
    if options.inside:
        return measure(options.inside, options.rounds)
    if os.geteuid() or not compare.PROGRAM.exists():
        print("apps: needs root, for mounts of its own, and a build", file=sys.stderr)
        return 3
    base = compare.ROOT / "build/bench"
    base.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(dir=base) as folder:
        root = Path(folder)
        make(root)
        return subprocess.run(["unshare", "--mount", sys.executable, __file__, "--inside", str(root), "--rounds", str(options.rounds)],
                              check=False).returncode


if __name__ == "__main__":
    sys.exit(main())
