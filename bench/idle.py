"""What the program costs while it sits in the tray with all windows closed: processor, wake-ups, memory. On a display, a bus and a tray of its
own, after its pages were opened once. Where this runs as root the program stands in a root folder of its own, in memory: otherwise whatever
else writes to the disk changes the free space that it shows, and wakes it."""
import argparse
import os
import re
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
PROGRAM = ROOT / "build/release/bin/orrinvale"
HOST = ROOT / "tests/tray/status_notifier_host.py"
PAGES = ("large-files", "duplicates", "disk-usage", "clean", "uninstall", "memory")
TICKS = os.sysconf("SC_CLK_TCK")

BARS = {"processor, %": 0.1, "wake-ups a second": 0.7, "resident, MiB": 55.0}


class Session:
    def __init__(self, home):
        self.processes = []
        self.environment = {"PATH": os.environ["PATH"], "HOME": home, "XDG_CONFIG_HOME": home + "/config", "XDG_RUNTIME_DIR": home,
                            "XDG_STATE_HOME": home + "/state", "LC_ALL": "C.UTF-8"}
        server = self.start("Xvfb", "-displayfd", "1", "-noreset", "-nolisten", "tcp", "-screen", "0", "1280x900x24")
        self.environment["DISPLAY"] = ":" + server.stdout.readline().strip()
        bus = self.start("dbus-daemon", "--session", f"--address=unix:abstract=orrinvale-bench-{os.getpid()}", "--print-address", "--nofork")
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()
        self.panel = self.start("/usr/bin/python3", str(HOST))
        for command in ("host on", "watcher on"):
            self.tell(command)

    def start(self, *command):
        process = subprocess.Popen(command, env=self.environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                   text=True)
        self.processes.append(process)
        return process

    def tell(self, command):
        self.panel.stdin.write(command + "\n")
        self.panel.stdin.flush()
        lines = []
        while (line := self.panel.stdout.readline().rstrip("\n")) != ".":
            lines.append(line)
        return lines

    def x(self, *command):
        return subprocess.run(command, env=self.environment, capture_output=True, text=True, check=False).stdout.split()

    def windows(self):
        return self.x("xdotool", "search", "--onlyvisible", "--class", "orrinvale")

    def close(self, window):
        """By its keys, which want the focus; no window manager gives it."""
        self.x("xdotool", "windowfocus", "--sync", window, "key", "ctrl+w")

    def end(self):
        for process in reversed(self.processes):
            process.kill()
            process.communicate()


def until(condition, seconds=20):
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            raise RuntimeError("the program did not come so far within 20 s")
        time.sleep(0.2)


def libraries(*programs):
    """The files that the dynamic loader would take, and it itself."""
    found = set()
    for program in programs:
        told = subprocess.run(["ldd", program], capture_output=True, text=True, check=True).stdout
        found.update(re.findall(r"(/\S+) \(0x", told))
    return found


def copy_into(root, paths):
    for path in paths:
        target = Path(f"{root}{path}")
        target.parent.mkdir(parents=True, exist_ok=True)
        subprocess.run(["cp", "-rL", path, target], check=True)


def root_of_its_own(folder):
    """What the program needs to run, in a folder that is then mounted as its root; the command that starts it there."""
    plugins = "/usr/lib/x86_64-linux-gnu/qt6/plugins"
    chosen = [f"{plugins}/{name}" for name in ("platforms/libqxcb.so", "iconengines/libqsvgicon.so", "imageformats/libqsvg.so",
                                               "platformthemes/libqxdgdesktopportal.so")]
    chosen = [path for path in chosen if os.path.exists(path)]
    systemd = "/usr/lib/x86_64-linux-gnu/libsystemd.so.0"
    copy_into(folder, libraries(PROGRAM, systemd, *chosen) | {*chosen, systemd, str(PROGRAM), "/etc/fonts", "/etc/passwd", "/usr/share/fonts",
                                                              "/usr/share/X11/xkb", "/usr/lib/locale/C.utf8"})
    script = ("mount -t tmpfs ram $1.ram && cp -a $1/. $1.ram && cd $1.ram && mkdir -p proc sys dev tmp home && mount --rbind /proc proc && "
              "mount --rbind /sys sys && mount --rbind /dev dev && exec chroot . $0")
    os.mkdir(folder + ".ram")
    return ["unshare", "-m", "--propagation", "private", "sh", "-c", script, str(PROGRAM), folder]


def counts(pid):
    """Voluntary switches by thread, ticks of the processor, KiB that are resident."""
    switches = {}
    for status in Path(f"/proc/{pid}/task").glob("*/status"):
        text = status.read_text(encoding="utf-8")
        name = re.search(r"(?m)^Name:\s*(.*)$", text)[1] + " " + status.parent.name
        switches[name] = int(re.search(r"(?m)^voluntary_ctxt_switches:\s*(\d+)", text)[1])
    stat = Path(f"/proc/{pid}/stat").read_text(encoding="utf-8").rpartition(")")[2].split()
    resident = re.search(r"(?m)^VmRSS:\s*(\d+)", Path(f"/proc/{pid}/status").read_text(encoding="utf-8"))[1]
    return switches, int(stat[11]) + int(stat[12]), int(resident)


def settle(session, start):
    program = session.start(*start)
    until(session.windows)
    until(lambda: session.tell("items"))
    for page in PAGES:
        if failed := session.tell("start " + page):
            raise RuntimeError(failed[0])
        time.sleep(0.5)
    session.x("xdotool", "key", "--window", session.windows()[0], "ctrl+0")
    time.sleep(1)
    until(lambda: not session.windows() or session.close(session.windows()[-1]))
    time.sleep(5)
    return program.pid


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--minutes", type=float, default=10)
    minutes = parser.parse_args().minutes
    with tempfile.TemporaryDirectory() as folder:
        has_own_root = os.geteuid() == 0
        session = Session("/home" if has_own_root else folder)
        try:
            pid = settle(session, root_of_its_own(folder + "/root") if has_own_root else [str(PROGRAM)])
            before, start = counts(pid), time.monotonic()
            time.sleep(minutes * 60)
            after, took = counts(pid), time.monotonic() - start
        finally:
            session.end()
    # What a thread did that ended meanwhile nobody knows; it is told, so that a figure is not taken for better than it is.
    woken = {name: count - before[0].get(name, 0) for name, count in after[0].items()}
    measured = ((after[1] - before[1]) / TICKS / took * 100, sum(woken.values()) / took, after[2] / 1024)
    print(f"in the tray for {minutes:g} minutes, windows closed")
    for name, count in woken.items():
        if count:
            print(f"    {name:<24} {count} wake-ups")
    if ended := before[0].keys() - after[0].keys():
        print(f"    ended meanwhile: {', '.join(sorted(ended))}")
    missed = False
    for (name, bar), value in zip(BARS.items(), measured):
        missed |= value > bar
        print(f"  {name:<20} {value:8.3f}   at most {bar:g}{'   MISSED' if value > bar else ''}")
    sys.exit(missed)


main()
