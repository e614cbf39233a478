#!/usr/bin/env python3
"""A package goes by keys in the window: the real page, the real service for packages and the real polkit, over a copy of the system.

    window_removal_test.py [PROGRAM] [--keep]

PROGRAM is an orrinvale (build/release/bin/orrinvale). Needs root: the system's folders are laid over with memory in a name space of mounts
of its own, and nothing of them changes. The window is an ordinary user's, whom a rule of polkit's lets remove packages.
Exit status: 0 what was shown went and nothing else, 1 something is not so, 77 this machine refuses such mounts or lacks a service.
"""
import argparse
import os
import shutil
import subprocess
import sys
from pathlib import Path

import own_mounts
from desk import Desk, comes_true
from restart_test import ROOT, Report, place_for_homes

BUS = "/run/dbus/system_bus_socket"
DAEMONS = ("/usr/bin/dbus-daemon --system --nofork --nopidfile", "/usr/lib/polkit-1/polkitd --no-debug", "/usr/libexec/packagekitd")
TOOLS = ("/usr/bin/pkcon", "/usr/bin/dpkg-scanpackages", "/usr/bin/xdotool", "/usr/bin/Xvfb")
LARGE = 12 << 20
PACKAGES = {"orr-clock": f"Installed-Size: {LARGE >> 10}\n", "orr-alarm": "Depends: orr-clock\n", "orr-other": ""}
RULE = 'polkit.addRule(function(action, subject) { if (action.id.indexOf("org.freedesktop.packagekit.") == 0) return "yes"; });\n'


def offer(name, fields):
    """A package with a program and an entry, in the repository."""
    place = Path("/mnt") / name
    for path, text in {
            "DEBIAN/control": f"Package: {name}\nVersion: 1.0\nArchitecture: all\nMaintainer: A <a@b.c>\nDescription: a test\n{fields}",
            f"usr/bin/{name}": "#!/bin/sh\n",
            f"usr/share/applications/{name}.desktop": f"[Desktop Entry]\nType=Application\nName={name}\nExec={name}\n"}.items():
        (place / path).parent.mkdir(parents=True, exist_ok=True)
        (place / path).write_text(text)
    (place / f"usr/bin/{name}").chmod(0o755)
    if "Installed-Size" in fields:
        (place / f"usr/share/{name}.data").write_bytes(os.urandom(LARGE))
    subprocess.run(["dpkg-deb", "--build", place, "/mnt/repository"], check=True, capture_output=True)


def furnish():
    own_mounts.lay_over("/usr", "/var", "/etc")
    for place in ("/run/dbus", "/var/lib/apt/lists", "/etc/apt/sources.list.d"):
        Path(place).mkdir(exist_ok=True)
        subprocess.run(["mount", "-t", "tmpfs", "none", place], check=True)
    Path("/etc/apt/sources.list").write_text("deb [trusted=yes] file:/mnt/repository ./\n")
    Path("/etc/polkit-1/rules.d/00-test.rules").write_text(RULE)
    Path("/mnt/repository").mkdir()
    for name, fields in PACKAGES.items():
        offer(name, fields)
    subprocess.run('dpkg-scanpackages . > Packages && printf "SHA256:\\n %s %s Packages\\n" "$(sha256sum < Packages | cut -c -64)" '
                   '"$(stat -c %s Packages)" > Release', shell=True, cwd="/mnt/repository", check=True, capture_output=True)


def start_services():
    started = []
    for line in DAEMONS:
        started.append(subprocess.Popen(line.split(), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL))
        comes_true(lambda: os.path.exists(BUS), 10)
    if not comes_true(lambda: subprocess.run(["pkcon", "resolve", "dpkg"], capture_output=True, check=False).returncode == 0, 20):
        raise RuntimeError("the service for packages does not come up")
    for words in (["refresh", "force"], ["install", *PACKAGES]):
        subprocess.run(["pkcon", "-y", *words], check=True, capture_output=True)
    return started


def there():
    """All packages whose files are there."""
    listed = subprocess.run(["dpkg-query", "-W", "-f", "${db:Status-Status} ${Package}:${Architecture}\n"], check=True,
                            capture_output=True, text=True).stdout
    return {line.split()[1] for line in listed.splitlines() if line.startswith("installed ")}


def free_memory():
    """Of the layer over the system's folders, in which all of the packages lies."""
    state = os.statvfs("/mnt")
    return state.f_bfree * state.f_frsize


def remove(desk, title):
    """Finds the package by the field, ticks it, asks, reads, and agrees."""
    desk.keys(title, "ctrl+f")
    desk.type(title, "orr-clock")
    desk.keys(title, "Down", "Home", "space")
    desk.picture("listed")
    desk.keys(title, "Delete")
    comes_true(lambda: False, 4)  # for what goes along; nobody can agree before
    desk.picture("asked")
    desk.keys(title, "Tab", "space")


def test(desk, options, report):
    program = desk.place / "orrinvale"
    shutil.copy(options.program, program)
    desk.environment["DBUS_SYSTEM_BUS_ADDRESS"] = f"unix:path={BUS}"
    before = there()
    report.check({f"{name}:all" for name in PACKAGES} <= before, f"{len(PACKAGES)} packages came from the repository", sorted(before)[:5])
    desk.start(program, "--action", "uninstall")
    title = "Orrinvale"
    desk.window(title)
    comes_true(lambda: False, 3)
    free = free_memory()
    remove(desk, title)
    comes_true(lambda: "orr-clock:all" not in there(), 60)
    comes_true(lambda: False, 2)
    desk.picture("removed")
    gained = free_memory() - free
    report.check(abs(gained - LARGE) < LARGE / 20, f"promised {LARGE}, gained {gained}", "more than 5 % beside it")
    gone = before - there()
    report.check(gone == {"orr-clock:all", "orr-alarm:all"}, f"what goes along with it went, and nothing else: {sorted(gone)}",
                 sorted(before - gone)[:5])
    for line in ("apt-get check", "dpkg --verify orr-other", "dpkg --audit"):
        done = subprocess.run(line.split(), capture_output=True, text=True, check=False)
        said = "" if line.startswith("apt-get") else done.stdout
        report.check(done.returncode == 0 and not said, line, done.stdout + done.stderr)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program", nargs="?", type=Path, default=ROOT / "build/release/bin/orrinvale")
    parser.add_argument("--keep", action="store_true")
    options = parser.parse_args()
    missing = [each for each in [line.split()[0] for line in DAEMONS] + list(TOOLS) if not os.access(each, os.X_OK)]
    if missing:
        print(f"skipped: {missing[0]} is not here")
        sys.exit(77)
    own_mounts.enter(__file__, options.program.resolve(), *(["--keep"] if options.keep else []))
    furnish()
    report, started = Report(), []
    with Desk(place_for_homes()) as desk:
        try:
            started = start_services()
            test(desk, options, report)
        except (OSError, RuntimeError, subprocess.SubprocessError) as error:
            desk.picture("error")
            report.check(False, "the test comes to its end", error)
    for each in reversed(started):
        each.kill()
        each.wait()
    if options.keep or report.faults:
        print(f"see {desk.place}")
    else:
        shutil.rmtree(desk.place, ignore_errors=True)
    print(f"{len(report.faults)} failed" if report.faults else "what was shown went")
    sys.exit(1 if report.faults else 0)


if __name__ == "__main__":
    main()
