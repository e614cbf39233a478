#!/usr/bin/env python3
"""Real programs are used in a fresh home, and their packages removed: what the inventory says that they left is told by name and grade.

    leftovers_test.py [CLI] [--keep]

CLI is an orrinvale-cli (build/release/bin/orrinvale-cli). Needs root: the system's folders are laid over with memory in a name space of
mounts of its own, and nothing of them changes.
Exit status: 0 all is as expected, 1 something is not, 77 this machine refuses such mounts.
"""
import argparse
import json
import shutil
import subprocess
import sys
from pathlib import Path

import own_mounts
from desk import Desk
from restart_test import ROOT, Report, fingerprint, place_for_homes
from used_programs import Firefox, KeePassXC, LibreOffice, Rclone, Thunderbird

PLACES = ("/usr", "/var", "/etc")
PROGRAMS = (Firefox, Thunderbird, LibreOffice, KeePassXC, Rclone)
PACKAGES = ("firefox-esr", "thunderbird", "keepassxc", "rclone", "libreoffice-common")
# Of each folder whose it is, its grade, and whether its program is there.
INSTALLED = {
    ".cache/thunderbird": ("thunderbird", "likely", True),
    ".config/keepassxc": ("keepassxc", "likely", True),
    ".cache/keepassxc": ("keepassxc", "likely", True),
    ".var/app/org.orrinvale.Gone/cache": ("org.orrinvale.Gone", "certain", False),
    ".var/app/org.orrinvale.Gone/data": ("org.orrinvale.Gone", "likely", False)}
# Of a package without settings in /etc dpkg remembers nothing.
GONE = {
    ".cache/thunderbird": ("thunderbird", "likely", False),
    ".var/app/org.orrinvale.Gone/cache": ("org.orrinvale.Gone", "certain", False),
    ".var/app/org.orrinvale.Gone/data": ("org.orrinvale.Gone", "likely", False)}
# Theirs as well, and offered by nobody: under another's name, shared, or of a program that is no application.
NEVER = (".cache/mozilla", ".mozilla", ".thunderbird", ".config/libreoffice", ".config/rclone", ".cache/rclone", ".cache/fontconfig")


def told(desk, cli, *options):
    """The grade of each folder, and whether its program is there."""
    status, output, error = desk.run(cli, "apps", "--leftovers", *options, "--json")
    document = json.loads(output)
    if status != 0 or document["skipped"]:
        raise RuntimeError(f"apps --leftovers: status {status}: {error}")
    return {str(Path(each["path"]).relative_to(desk.home)): (each["of"], each["grade"], each["isInstalled"])
            for each in document["leftovers"]}


def check(report, what, found, expected):
    report.check(found.keys() == expected.keys(), f"{what}: {len(expected)} folders, and no other", f"{sorted(found)}")
    for path, verdict in expected.items():
        report.check(found.get(path) == verdict, f"{what}: {path}: {', '.join(map(str, verdict))}", f"{found.get(path)}")


def test(desk, options, report):
    cli = desk.place / "orrinvale-cli"
    shutil.copy(options.cli, cli)
    for kind in PROGRAMS:
        program = kind(desk)
        program.prepare()
        program.use()
    for name in ("cache/thumbnail", "data/letters.mbox"):
        desk.write(f".var/app/org.orrinvale.Gone/{name}", "left by a flatpak")
    tree = fingerprint(desk.home)
    check(report, "installed", told(desk, cli), INSTALLED)
    subprocess.run(["dpkg", "--remove", "--force-depends", *PACKAGES], check=True, capture_output=True)
    check(report, "gone", told(desk, cli), GONE)
    one = told(desk, cli, "thunderbird")
    check(report, "of one that is gone", one, {path: GONE[path] for path in GONE if "thunderbird" in path})
    report.check(fingerprint(desk.home) == tree, f"{len(tree)} entries of the home are what they were")
    missing = [each for each in NEVER if not (desk.home / each).exists()]
    report.check(not missing, f"{len(NEVER)} more folders are there that nobody is offered", missing)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("cli", nargs="?", type=Path, default=ROOT / "build/release/bin/orrinvale-cli")
    parser.add_argument("--keep", action="store_true")
    options = parser.parse_args()
    own_mounts.enter(__file__, options.cli.resolve(), *(["--keep"] if options.keep else []))
    own_mounts.lay_over(*PLACES)
    report = Report()
    with Desk(place_for_homes()) as desk:
        try:
            test(desk, options, report)
        except (OSError, RuntimeError, subprocess.SubprocessError) as error:
            desk.picture("error")
            report.check(False, "the test comes to its end", error)
    if options.keep or report.faults:
        print(f"see {desk.place}")
    else:
        shutil.rmtree(desk.place, ignore_errors=True)
    print(f"{len(report.faults)} failed" if report.faults else "all is told")
    sys.exit(1 if report.faults else 0)


if __name__ == "__main__":
    main()
