#!/usr/bin/env python3
"""The system's caches and logs of this machine are cleaned in a copy that nobody else sees; its tools must go on telling what they told.

    system_test.py [CLEANER]

Needs root: /var/cache and /var/log are laid over with memory in a name space of mounts of its own, and nothing of them changes.
Exit status: 0 all is there, 1 something is lost or nothing was offered, 77 this machine refuses such mounts.
"""
import json
import os
import shutil
import subprocess
import sys
from pathlib import Path

import own_mounts

ROOT = Path(__file__).resolve().parents[2]
PLACES = ("/var/cache", "/var/log")
# Each reads what lies in the two folders, or would write there.
TOOLS = ("apt-get check", "apt-cache policy bash", "apt-get -s install --reinstall bash", "debconf-show tzdata", "dpkg --audit",
         "man -w ls", "whatis ls", "apropos -s1 -e directory", "fc-match sans", "ldconfig -p", "last", "lastlog -u root",
         "journalctl --list-boots", "logrotate -d /etc/logrotate.conf")


def told():
    """What each tool that is here says, its lines in order."""
    answers = {}
    for line in TOOLS:
        words = line.split()
        if shutil.which(words[0]):
            done = subprocess.run(words, capture_output=True, text=True, errors="replace", check=False,
                                  env=os.environ | {"LC_ALL": "C.UTF-8"})
            answers[line] = (done.returncode, sorted(done.stdout.splitlines()))
    return answers


def folders():
    return {path: (oct(os.stat(path).st_mode), os.stat(path).st_uid, os.stat(path).st_gid)
            for place in PLACES for path, _, _ in os.walk(place)}


# What rotation leaves, for a machine that has none of it.
ROTATED = ("/var/log/orrinvale-test/syslog.1", "/var/log/journal/orrinvale-test/system@0b-0c.journal", "/var/log/orrinvale-test.log.old")


def rotate():
    for path in ROTATED:
        os.makedirs(os.path.dirname(path), exist_ok=True)
        Path(path).write_text("1\n")


def check(holds, what, details=""):
    print(f"{'ok    ' if holds else 'FAILED'}  {what}" + ("" if holds else f"\n        {details}"), flush=True)
    return bool(holds)


def test(cleaner):
    own_mounts.lay_over(*PLACES)
    rotate()
    told()  # some write their caches anew where they are old
    before, folders_before = told(), folders()
    done = subprocess.run([cleaner, "clean", "--category", "system-caches", "--category", "system-logs", "--remove", "--yes",
                           "--json"], capture_output=True, text=True, check=False)
    document = json.loads(done.stdout)
    fine = check(done.returncode == 0 and not document["failed"], f"cleaned: {document['promised']} bytes", document["failed"])
    fine &= check(document["categories"][0]["entries"], "caches are offered", "nothing is offered")
    left = [path for path in ROTATED if os.path.exists(path)]
    fine &= check(not left, f"{len(ROTATED)} rotated logs are gone", left)
    fine &= check(folders() == folders_before, f"{len(folders_before)} folders are what they were")
    after = told()
    for line, answer in before.items():
        fine &= check(after[line] == answer, f"{line}: status {answer[0]}, {len(answer[1])} lines",
                      f"now status {after[line][0]}, {len(after[line][1])} lines: {after[line][1][:3]}")
    return fine


def main():
    cleaner = Path(sys.argv[1] if len(sys.argv) > 1 else ROOT / "build/release/bin/orrinvale-cli").resolve()
    own_mounts.enter(__file__, cleaner)
    sys.exit(0 if test(cleaner) else 1)


if __name__ == "__main__":
    main()
