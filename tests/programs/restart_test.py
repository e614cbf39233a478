#!/usr/bin/env python3
"""Real programs are used, ended, cleaned after and started again: they must have all that they had.

    restart_test.py [CLEANER] [--compare] [--keep]

CLEANER is an orrinvale-cli (build/release/bin/orrinvale-cli). The programs run as an ordinary user with a fresh home on a display and a
bus of their own. The cleaner's clock stands a day later, or nothing would be old enough to go. At the end the home of before is brought
back and its caches are emptied altogether, which has to be noticed: otherwise the checks above could not fail.

--compare prints what BleachBit offers in the same home beside it. --keep leaves the home and the pictures of the screen.
Exit status: 0 all is there, 1 something is lost or nothing was offered.
"""
import argparse
import hashlib
import json
import os
import shutil
import subprocess
import sys
import time
from pathlib import Path

import other_offers
from desk import Desk
from used_programs import ALL, KeePassXC, Rclone

ROOT = Path(__file__).resolve().parents[2]
CATEGORIES = ("user-caches", "user-logs", "user-trash", "user-downloads")
OWN = (".local/state/com.kelpford.Orrinvale", ".config/com.kelpford.Orrinvale")
LIKE = 0.02  # share of the screen that a clock, a caret or a tip may change
LATER = ("env", "NO_FAKE_STAT=1", "FAKETIME_DONT_FAKE_MONOTONIC=1", "faketime", "-f", "+1d")


def furnish(desk):
    """What gathers in a home beside the programs' own files, and what of a person's lies or leads in among it."""
    desk.write("Downloads/setup.zip", b"z" * 300_000)
    desk.write("Downloads/film.mkv.part", b"f" * 1000)
    desk.write("Documents/thrown away.txt", "no longer wanted")
    desk.must("gio", "trash", desk.home / "Documents/thrown away.txt")
    desk.write(".local/state/log/session.log", "started\n" * 1000)
    desk.write(".xsession-errors.old", "warning\n" * 1000)
    desk.write("Documents/diary.txt", "mine").chmod(0o400)
    desk.write("Pictures/holiday.jpg", b"j" * 5000).chmod(0o440)
    desk.write(".cache/viewer/thumbnail", b"t" * 2000)
    desk.must("ln", "-s", "../../Documents", desk.home / ".cache/viewer/by-link")
    desk.must("ln", "-s", "../../Documents/diary.txt", desk.home / ".cache/viewer/diary")
    desk.must("ln", desk.home / "Pictures/holiday.jpg", desk.home / ".cache/viewer/same.jpg")
    desk.write(".cache/writer/unsaved.odt", "a letter that was never saved elsewhere")


def fingerprint(home):
    """Each entry with all of it that may not change."""
    found = {}
    for folder, folders, files in os.walk(home):
        for name in folders + files:
            path = Path(folder) / name
            entry, relative = path.lstat(), str(path.relative_to(home))
            if relative.startswith(OWN):
                continue
            facts = [oct(entry.st_mode), entry.st_uid]
            if path.is_symlink():
                facts.append(os.readlink(path))
            elif path.is_file():
                facts += [entry.st_mtime_ns, hashlib.sha256(path.read_bytes()).hexdigest()]
            found[relative] = facts
    return found


def look_at(program, moment):
    """Starts and ends it; what it shows and what the person has in it."""
    program.open()
    time.sleep(3)
    picture = program.desk.picture(f"{type(program).__name__}-{moment}")
    shown = program.screen()
    program.close()
    return {"shown": shown, "picture": picture, "belongings": program.belongings()}


class Report:
    def __init__(self):
        self.faults = []

    def check(self, holds, what, details=""):
        print(f"{'ok    ' if holds else 'FAILED'}  {what}" + ("" if holds else f"\n        {details}"), flush=True)
        if not holds:
            self.faults.append(what)


def clean(desk, cleaner, *options):
    words = [word for category in CATEGORIES for word in ("--category", category)]
    status, output, error = desk.run(*LATER, cleaner, "clean", *words, "--json", *options)
    if not output:
        raise RuntimeError(f"clean: status {status}: {error}")
    return status, json.loads(output)


def paths_of(document, key):
    return {str(Path(entry["path"])) for category in document["categories"] for entry in category[key]}


def check_offer(report, desk, document, programs):
    for category in document["categories"]:
        report.check(category["entries"], f"{category['name']}: {len(category['entries'])} entries offered, {category['size']} bytes",
                     "nothing is offered")
    offered = {str(Path(each).relative_to(desk.home)) for each in paths_of(document, "entries")}
    kept = {str(Path(each).relative_to(desk.home)) for each in paths_of(document, "kept")}
    for name in filter(None, [".cache/viewer", "Downloads/setup.zip", *(each.offered for each in programs)]):
        report.check(name in offered, f"offered: {name}", sorted(offered))
    for name in filter(None, [".cache/writer", "Downloads/film.mkv.part", *(each.kept for each in programs)]):
        report.check(name in kept, f"kept: {name}", sorted(kept))
    return offered


def check_tree(report, before, after, offered):
    """Nothing but what was offered went, and nothing else became another."""
    allowed = offered | {f".local/share/Trash/info/{Path(each).name}.trashinfo" for each in offered if "/Trash/files/" in each}
    gone = {each for each in before if each not in after}
    stray = {each for each in gone if not any(each == way or each.startswith(way + "/") for way in allowed)}
    report.check(not stray, f"{len(gone)} entries went, all of them offered", sorted(stray)[:10])
    left = {each for each in after if any(each == way or each.startswith(way + "/") for way in offered)}
    report.check(not left, "all that was offered went", sorted(left)[:10])
    changed = [(each, before.get(each), after[each]) for each in after if before.get(each) != after[each]]
    report.check(not changed, f"{len(after)} entries are what they were: content, mode, owner", changed[:5])


def check_program(report, name, before, after):
    for what in ("shown", "belongings"):
        report.check(before[what] == after[what], f"{name}, {what}: {before[what]}", f"now {after[what]}")


def clean_beside(report, desk, cleaner, programs, before):
    """Cleans while all of them run: what they have open stays, and none notices."""
    for program in programs:
        program.open()
    time.sleep(3)
    status, done = clean(desk, cleaner, "--remove", "--yes")
    report.check(status == 0 and not done["failed"], "cleaned while they run", f"status {status}, {done.get('failed')}")
    kept = {str(Path(each).relative_to(desk.home)) for each in paths_of(done, "kept")}
    for program in programs:
        report.check(program.process.poll() is None, f"{program.name} runs on", "it has ended")
        for name in filter(None, (program.offered, program.kept)):
            report.check(name in kept, f"{program.name}, kept while it runs: {name}", sorted(kept))
    for program in reversed(programs):
        program.close()
    for program in programs:
        check_program(report, f"{program.name} after that", before[program], look_at(program, "beside"))


def prove(report, desk, programs, spare, before):
    """With all caches emptied the same looks must find that something is lost."""
    shutil.rmtree(desk.home)
    subprocess.run(["cp", "-a", spare, desk.home], check=True)
    desk.must("sh", "-c", "rm -rf .cache/*")
    for program in programs:
        if isinstance(program, KeePassXC):
            report.check(look_at(program, "emptied")["shown"] != before[program]["shown"],
                         "an emptied cache is noticed in the password manager", "it shows what it showed")
        if isinstance(program, Rclone):
            report.check(program.upload() is None, "an emptied cache is noticed in the sync tool", "the upload arrived")


def test(desk, options, report):
    cleaner = desk.place / "orrinvale-cli"
    shutil.copy(options.cleaner, cleaner)
    programs = [each(desk) for each in ALL if options.only in ("", each.__name__)]
    furnish(desk)
    for program in programs:
        program.prepare()
        program.use()
    before = {program: look_at(program, "before") for program in programs}
    spare = desk.place / "spare"
    subprocess.run(["cp", "-a", desk.home, spare], check=True)
    if options.compare:
        other = desk.place / "other"  # for the settings that BleachBit writes
        subprocess.run(["cp", "-a", spare, other], check=True)
    tree = fingerprint(desk.home)
    _, document = clean(desk, cleaner)
    if options.compare:
        print(other_offers.table(desk, other, document))
    report.check(fingerprint(desk.home) == tree, "a list changes nothing")
    offered = check_offer(report, desk, document, programs)
    status, done = clean(desk, cleaner, "--remove", "--yes")
    report.check(status == 0 and not done["failed"], f"cleaned: promised {done['promised']}, gained {done.get('gained')}",
                 f"status {status}, {done.get('failed')}")
    check_tree(report, tree, fingerprint(desk.home), offered)
    for program in programs:
        after = look_at(program, "after")
        check_program(report, program.name, before[program], after)
        unlike = desk.difference(before[program]["picture"], after["picture"])
        report.check(unlike < LIKE, f"{program.name}, screen: {unlike:.2%} of it differ", f"see {after['picture']}")
    clean_beside(report, desk, cleaner, programs, before)
    for program in programs:
        if isinstance(program, Rclone):
            arrived = program.upload()
            report.check(arrived == "written on the train\n", "the held upload arrives", f"there is {arrived}")
    prove(report, desk, programs, spare, before)


def place_for_homes():
    """In build/, where it is open for others; what lies in the system's folders for temporary files is another matter to cleaners."""
    place = ROOT / "build/programs"
    place.mkdir(parents=True, exist_ok=True)
    return place if all(each.stat().st_mode & 0o001 for each in [place, *place.parents]) else "/var/tmp"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("cleaner", nargs="?", type=Path, default=ROOT / "build/release/bin/orrinvale-cli")
    parser.add_argument("--compare", action="store_true")
    parser.add_argument("--only", default="", metavar="CLASS", help="of used_programs.py")
    parser.add_argument("--keep", action="store_true")
    options = parser.parse_args()
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
    print(f"{len(report.faults)} failed" if report.faults else "nothing is lost")
    sys.exit(1 if report.faults else 0)


if __name__ == "__main__":
    main()
