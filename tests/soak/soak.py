#!/usr/bin/env python3
"""The program as somebody uses it for a week, within half an hour: on a display, a bus and a tray of its own, by a made-up person with a
home in memory. A hand works by chance on one page after the other, while volumes come and go, a disk is full, a folder does not answer,
the look changes and windows close.

    soak.py PROGRAM PROBE FOLDER-SERVER [--minutes M] [--seed N] [--keep]

Told at the end, each with its bar: what ended, turns of the main thread over 50 ms, and what the program holds at rest at a third of the
time beside its end: allocated bytes within 1 %, descriptors and threads the same. Needs root for the volumes. Exit status: 0 all held,
1 something did not, 77 this machine lacks something.
"""
import argparse
import contextlib
import itertools
import os
import random
import re
import shutil
import socket
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests/programs"))
from desk import Desk, comes_true  # pylint: disable=wrong-import-position

INSIDE = "ORRINVALE_OWN_MOUNTS"
LAUNCHER = "/usr/libexec/at-spi-bus-launcher"
ROUND = 45          # actions on a page before the next
SETTLED = 36        # seconds: pools of threads give theirs back after 30
BAR_MICROSECONDS = 50_000
QUIT = 1            # the status of a program that was told to quit
# A warning of the toolkit is a fault of ours; what the program itself says is not.
WARNING = re.compile(r"^(?:\S+ )?(Q[A-Z]\w+(::|: )|qt\.|qml|QPainter|Could not|Cannot ).*")
PAGES = ("duplicates", "large-files", "clean", "disk-usage", "uninstall", "memory", "login-items")
BY_TOOLBAR = ("Free Space|Freier Speicher", "Preferences|Einstellungen", "Duplicates|Duplikate")
# Leads out of a question, and from a result to where the page began.
WAYS_BACK = "Cancel|No|Abbrechen|Nein|Start Over|Back|Neu beginnen|Zurück"


class Soak:
    def __init__(self, desk, arguments):
        self.desk, self.arguments = desk, arguments
        self.chance = random.Random(arguments.seed)
        self.cli = str(Path(arguments.program).with_name("orrinvale-cli"))
        self.socket, self.turns_file = desk.place / "run/probe", desk.place / "run/turns"
        self.actions, self.served, self.volume_number = 0, None, itertools.count(1)
        self.volumes, self.program = [], None

    # --- the person's things ---

    def fill(self):
        """What a week leaves in a home; what is there already stays."""
        number = self.chance.randrange(10**6)
        for index in range(60):
            self.desk.write(f"Documents/{index % 6}/copy {index}.txt", f"{index % 20}" * 3000)
            self.desk.write(f".cache/program{index % 7}/{number}-{index}", "c" * 5000)
        for name in ("Downloads/setup.deb", "Downloads/film.mkv", ".local/state/app/app.log", ".cache/thumbnails/a.png",
                     ".local/share/Trash/files/old.txt", "Applications/Tool.AppImage"):
            self.desk.write(name, b"x" * self.chance.randrange(1, 200_000))
        self.desk.write(".local/share/Trash/info/old.txt.trashinfo", "[Trash Info]\nPath=/old.txt\nDeletionDate=2026-01-01T10:00:00\n")
        self.desk.write(".config/autostart/tool.desktop", "[Desktop Entry]\nType=Application\nName=Tool\nExec=true\n")
        self.desk.write(".local/share/applications/thing.desktop", "[Desktop Entry]\nType=Application\nName=Thing\nExec=true\n")

    def settings(self, **values):
        for name, value in values.items():
            self.desk.must(self.cli, "settings", "set", name, value)

    # --- the program and the hand on it ---

    def start(self):
        self.socket.unlink(missing_ok=True)
        environment = self.desk.environment | {
            "LD_PRELOAD": self.arguments.probe, "ORRINVALE_SOAK_SOCKET": str(self.socket),
            "ORRINVALE_SOAK_TURNS": str(self.turns_file)}
        self.program = self.desk.start(self.arguments.program, env=environment)
        self.hand = self.desk.start("/usr/bin/python3", Path(__file__).with_name("hand.py"), stdin=subprocess.PIPE,
                                    stdout=subprocess.PIPE, text=True)
        if not comes_true(lambda: self.tell("names"), 30):
            raise RuntimeError("no window shows")
        self.turns_file.write_text("", encoding="utf-8")  # what the start costs is measured elsewhere

    def stop(self):
        """The status that it ended with; none where it does not end."""
        self.desk.end(self.hand)
        self.action("quit")
        comes_true(lambda: self.program.poll() is not None, 20)
        if self.program.poll() is None:
            self.desk.picture("does not end")
        return self.program.poll()

    def tell(self, line):
        self.hand.stdin.write(line + "\n")
        self.hand.stdin.flush()
        answer = self.hand.stdout.readline().strip()
        self.see_it_runs(line)
        return answer

    def see_it_runs(self, at):
        if self.program.poll() is None:
            return
        calls = self.turns_file.read_text(encoding="utf-8", errors="replace").partition("ended by a signal\n")[2].splitlines()
        raise RuntimeError(f"the program ended with status {self.program.poll()} at \"{at}\", after {self.actions} actions; it was in "
                           + "\n  ".join(["", *named_calls(self.arguments.program, calls)[:20], *calls[:20]]))

    def play(self, count):
        self.tell(f"play {count}")
        self.actions += count

    def action(self, name, *more):
        self.see_it_runs(name)
        self.desk.run(self.arguments.program, *(("--action", name) if name else ()), *more)

    def windows(self):
        return self.desk.run("xdotool", "search", "--onlyvisible", "--class", "orrinvale")[1].split()

    def close_windows(self):
        """Questions first: a window with one does not close."""
        for _ in range(30):
            if not (windows := self.windows()):
                return
            for key in ("Escape", "ctrl+w"):
                self.desk.run("xdotool", "windowactivate", "--sync", windows[-1], "key", key, seconds=20)
            time.sleep(0.3)
        raise RuntimeError(f"windows stay open: {self.desk.titles()}, {self.tell('names')}; see {self.desk.picture('windows')}")

    # --- rounds ---

    def visit(self, page):
        if page in PAGES:
            self.action(page)
        else:
            self.action("memory")
            self.tell(f"press {page}")
        time.sleep(0.3)
        folder = str(self.desk.home / "Documents")
        if page == "duplicates":
            self.action("", folder)
        elif page == "disk-usage":
            self.action("", "--disk-usage", self.chance.choice([folder, str(self.desk.home), *map(str, self.volumes)]))
        elif page == "clean":
            self.tell("press Scan|Prüfen|Scannen|Scan again")
        time.sleep(0.3)

    def happen(self):
        """Something that no page expects."""
        what = self.chance.choice(("volume", "volume", "gone", "theme", "close", "full", "hang", "fill", "fast-clean"))
        if what == "volume" and len(self.volumes) < 4:
            self.mount()
        elif what == "gone" and self.volumes:
            self.unmount()
        elif what == "theme":
            self.choose_theme(self.chance.randrange(3))
        elif what == "close":
            self.close_windows()
        elif what == "full":
            self.run_full()
        elif what == "hang":
            self.hang()
        elif what == "fast-clean":
            self.action("fast-clean")
            self.play(10)
        self.fill()

    def choose_theme(self, number):
        self.visit(BY_TOOLBAR[1])
        self.tell(f"choose -2 {number}")

    def mount(self):
        place = self.desk.place / "volumes" / f"STICK {next(self.volume_number)}"
        place.mkdir(parents=True)
        subprocess.run(["mount", "-t", "tmpfs", "-o", "size=40m,mode=777", "stick", place], check=True)
        (place / "film.mkv").write_bytes(b"f" * 30_000_000)
        self.volumes.append(place)

    def unmount(self):
        place = self.volumes.pop(self.chance.randrange(len(self.volumes)))
        subprocess.run(["umount", "--lazy", place], check=True)
        place.rmdir()

    def run_full(self):
        """The home's disk takes not one byte more for a while."""
        filler = self.desk.place / "filler"
        with open(filler, "wb", buffering=0) as file, contextlib.suppress(OSError):
            while True:
                file.write(b"\0" * 65536)
        self.play(ROUND)
        filler.unlink()

    def hang(self):
        """A folder on a disk that does not answer until it is pulled out."""
        source, place = self.desk.place / "source", self.desk.place / "hung"
        for folder in (source, place):
            folder.mkdir(exist_ok=True)
            self.desk.give(folder)
        (source / "hang here").mkdir(exist_ok=True)
        server = self.desk.start(self.arguments.server, place, source, "hang")
        comes_true(lambda: os.path.ismount(place), 5)
        self.action("", "--disk-usage", str(place))
        self.play(ROUND)
        self.desk.end(server)
        subprocess.run(["umount", "--lazy", place], check=False, capture_output=True)

    # --- what it holds ---

    def probe(self):
        with socket.socket(socket.AF_UNIX) as one:
            one.connect(str(self.socket))
            words = one.recv(500).decode().split()
        return dict(zip(words[::2], map(int, words[1::2])))

    def at_rest(self):
        """The same state each time: no volume, each page where it began, all windows closed."""
        while self.volumes:
            self.unmount()
        shutil.rmtree(self.desk.home / ".cache")
        for _ in range(2):
            for page in (*PAGES, *BY_TOOLBAR):
                if page in PAGES:
                    self.action(page)
                else:
                    self.tell(f"press {page}")
                for _ in range(3):
                    if self.tell(f"press {WAYS_BACK}") == "none":
                        break
                    time.sleep(0.3)
        self.choose_theme(0)
        self.close_windows()
        time.sleep(SETTLED)
        held = self.probe()
        folder = Path(f"/proc/{self.program.pid}")
        held["descriptors"] = sorted(os.readlink(each) for each in (folder / "fd").iterdir())
        held["threads"] = sorted((each / "comm").read_text(encoding="utf-8").strip() for each in (folder / "task").iterdir())
        held["resident"] = int(re.search(r"VmRSS:\s*(\d+)", (folder / "status").read_text(encoding="utf-8"))[1]) * 1024
        print(f"    {self.actions:6d} actions: {held['allocated']:,} bytes allocated, {held['resident'] / 2**20:.1f} MiB resident, "
              f"{len(held['descriptors'])} descriptors, {len(held['threads'])} threads", flush=True)
        self.fill()
        return held

    def see_everything(self):
        """Each page in each look, once."""
        for theme in (1, 2, 0):
            self.choose_theme(theme)
            for page in (*PAGES, *BY_TOOLBAR):
                self.visit(page)
                self.play(5)
        self.action("fast-clean")
        self.play(10)
        for step in (self.mount, self.run_full, self.hang, self.unmount):
            step()

    def run(self, seconds):
        """The rows of what it held at a third of the time and at its end."""
        start, pages = time.monotonic(), []
        self.see_everything()
        held = []
        for end in (seconds / 3, seconds * 2 / 3, seconds):
            while time.monotonic() - start < end - SETTLED:
                if not pages:
                    pages = self.chance.sample((*PAGES, *BY_TOOLBAR), len(PAGES) + len(BY_TOOLBAR))
                self.visit(pages.pop())
                self.play(ROUND)
                if self.chance.random() < 0.5:
                    self.happen()
            held.append(self.at_rest())
        return held[0], held[-1]


# --- the account ---

def named_calls(program, lines):
    """The program's own calls of a turn, the innermost first."""
    places = [match[1] for line in lines if (match := re.search(r"/orrinvale\(\+(0x[0-9a-f]+)\)", line))]
    if not places:
        return []
    told = subprocess.run(["addr2line", "-Cfse", program, *places], capture_output=True, text=True, check=False).stdout.splitlines()
    return [f"{name} ({place})" for name, place in zip(told[::2], told[1::2])]


def told(calls, lines):
    """A turn that is the toolkit's alone is told by the toolkit's calls."""
    return " < ".join(calls[:5] if len(calls) > 2 else [line.partition("(")[2].partition("+")[0] or "?" for line in lines[2:14]])


def long_turns(program, text):
    """Of each turn: its microseconds and the calls it was in."""
    turns = []
    for part in text.split("turn of ")[1:]:
        head, *lines = part.splitlines()
        if not any("QSpiAccessibleBridge" in line for line in lines):  # the reader's own way into the toolkit
            turns.append((int(head.split()[0]), named_calls(program, lines), lines))
    return turns


def check(holds, what, details=""):
    print(f"{'ok    ' if holds else 'FAILED'}  {what}" + ("" if holds else f"\n        {details}"), flush=True)
    return bool(holds)


def judge(soak, before, after, status):
    turns = long_turns(soak.arguments.program, soak.turns_file.read_text(encoding="utf-8", errors="replace"))
    logs = (soak.desk.place / "orrinvale.log", soak.desk.home / ".local/state/com.kelpford.Orrinvale/Orrinvale.log")
    log = [line for each in logs if each.exists() for line in each.read_text(encoding="utf-8", errors="replace").splitlines()]
    warnings = sorted({line for line in log if WARNING.match(line)})
    growth = after["allocated"] / before["allocated"] - 1
    fine = check(status == QUIT, f"{soak.actions} actions, and it ended as asked", f"status {status}")
    fine &= check(after["turns"] > 1000, f"{after['turns']} turns of the main thread were measured")
    fine &= check(not turns, f"none of them over {BAR_MICROSECONDS // 1000} ms", "\n        ".join(
        f"{turn / 1000:.0f} ms: {told(calls, lines)}" for turn, calls, lines in sorted(turns, key=lambda each: -each[0])[:40]))
    fine &= check(abs(growth) <= 0.01, f"allocated at rest: {growth:+.2%}", "more than 1 % from a third of the time to its end")
    for what in ("descriptors", "threads"):
        fine &= check(before[what] == after[what], f"{len(after[what])} {what} at rest",
                      f"{len(before[what])} before; gone {set(before[what]) - set(after[what])}, new {set(after[what]) - set(before[what])}")
    fine &= check(not warnings, "the toolkit warned of nothing", "\n        ".join(warnings[:20]))
    return fine


def soak(arguments, base):
    with Desk(base) as desk:
        (desk.place / "run").mkdir(exist_ok=True)
        desk.environment.pop("NO_AT_BRIDGE")
        desk.environment |= {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "PATH": f"{desk.place}/bin:/usr/bin:/bin"}
        (desk.place / "bin").mkdir()
        for name in ("xdg-open", "firefox", "x-www-browser"):  # nothing is opened elsewhere
            (desk.place / "bin" / name).write_text("#!/bin/sh\nexit 0\n", encoding="utf-8")
            (desk.place / "bin" / name).chmod(0o755)
        desk.start(LAUNCHER, "--launch-immediately")
        tray = desk.start("/usr/bin/python3", ROOT / "tests/tray/status_notifier_host.py", stdin=subprocess.PIPE, stdout=subprocess.DEVNULL,
                          text=True)
        tray.stdin.write("host on\nwatcher on\n")
        tray.stdin.flush()
        one = Soak(desk, arguments)
        one.fill()
        one.settings(keepRunning="true", ZvShowStatusItem="false", language="de")
        one.start()
        one.see_everything()
        status = one.stop()
        fine = check(status == QUIT, f"in German: {one.actions} actions, and it ended as asked", f"status {status}")
        one.settings(language="en")
        one.start()
        before, after = one.run(arguments.minutes * 60)
        return judge(one, before, after, one.stop()) and fine


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program")
    parser.add_argument("probe")
    parser.add_argument("server")
    parser.add_argument("--minutes", type=float, default=30)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--keep", action="store_true", help="leave the home and the logs")
    arguments = parser.parse_args()
    if os.geteuid() != 0 or not Path(LAUNCHER).exists():
        print("needs root, and the accessibility bus", file=sys.stderr)
        sys.exit(77)
    if INSIDE not in os.environ:
        os.environ[INSIDE] = "1"
        os.execvp("unshare", ["unshare", "--mount", "--propagation", "private", sys.executable, *sys.argv])
    base = tempfile.mkdtemp(prefix="soak-")
    os.chmod(base, 0o755)
    subprocess.run(["mount", "-t", "tmpfs", "-o", "size=300m,mode=755", "soak", base], check=True)
    try:
        sys.exit(not soak(arguments, base))
    finally:
        if arguments.keep:
            shutil.copytree(base, f"{base}.kept", symlinks=True, dirs_exist_ok=True, ignore_dangling_symlinks=True,
                            ignore=lambda _, names: [each for each in names if each in ("filler", "volumes", "hung", "run")])
            print(f"kept in {base}.kept")
        subprocess.run(["umount", "--lazy", base], check=False)
        os.rmdir(base)


if __name__ == "__main__":
    main()
