"""The program in the tray of a desktop: on a display and a bus of the test's own, among mounts of its own, with a host that reads the exported
menu as a panel would, and with trayer."""
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

PROGRAM = sys.argv.pop(1)
HERE = Path(__file__).resolve().parent
SKIPPED = 77
ODD = "R&D_disk<b>"


def until(condition, seconds=10):
    """What the condition gives once it is true; its last answer when the time is over."""
    end = time.monotonic() + seconds
    while not (answer := condition()) and time.monotonic() < end:
        time.sleep(0.02)
    return answer


class Session:
    """A desktop with nothing but a display, a bus and a panel that is told when to show its tray."""

    def __init__(self, folder, settings="", bus=True):
        self.folder, self.processes = Path(folder), []
        self.environment = {
            "PATH": os.environ["PATH"], "HOME": folder, "XDG_CONFIG_HOME": f"{folder}/config",
            "XDG_RUNTIME_DIR": folder, "XDG_STATE_HOME": f"{folder}/state", "LC_ALL": "C.UTF-8",
            "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nonexistent",
        }
        assert any(self.start_display(number) for number in range(5)), "no display"
        if bus:
            daemon = self.start(["dbus-daemon", "--session", "--print-address", "--nofork"])
            self.environment["DBUS_SESSION_BUS_ADDRESS"] = daemon.stdout.readline().strip()
            self.panel = self.start(["/usr/bin/python3", str(HERE / "status_notifier_host.py")])
        if settings:
            place = self.folder / "config/com.kelpford.Orrinvale/settings.ini"
            place.parent.mkdir(parents=True)
            place.write_text(f"[Orrinvale]\n{settings}\n", encoding="utf-8")

    def start_display(self, attempt):
        """By a number of its own: servers that look for a free one take each other's away when several tests run."""
        display = f":{10000 + os.getpid() % 10000 * 5 + attempt}"
        self.environment["DISPLAY"] = display
        server = self.start(["Xvfb", display, "-noreset", "-nolisten", "tcp", "-screen", "0", "1000x700x24"])
        return until(lambda: server.poll() is not None or self.x("xdotool", "getdisplaygeometry")) and server.poll() is None

    def start(self, command):
        environment = getattr(self, "environment", None)
        with open(self.folder / "errors", "a", encoding="utf-8") as errors:
            process = subprocess.Popen(command, env=environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                       stderr=errors, text=True)
        self.processes.append(process)
        return process

    def run_program(self):
        self.program = self.start(["unshare", "-m", "--propagation", "private", "sh", "-c",
                                   "mount -t tmpfs ram /mnt && mkdir \"/mnt/$1\" && mount -t tmpfs -o size=1m ram \"/mnt/$1\" && exec \"$0\"",
                                   PROGRAM, ODD])
        assert until(self.window, 30), f"no window, status {self.program.poll()}: " + (self.folder / "errors").read_text(encoding="utf-8")

    def in_mounts(self, *command):
        subprocess.run(["nsenter", "-t", str(self.program.pid), "-m", *command], check=True)

    def tell(self, command):
        self.panel.stdin.write(command + "\n")
        self.panel.stdin.flush()
        lines = []
        while (line := self.panel.stdout.readline().rstrip("\n")) != ".":
            lines.append(line)
        return lines

    def show_tray(self):
        self.tell("host on")
        self.tell("watcher on")

    def items(self):
        return self.tell("items")

    def menu(self):
        """Empty while it is not there, as between two hosts."""
        return [line.split("|") for line in self.tell("menu") if "|" in line]

    def entry(self, label):
        return next((entry for entry in self.menu() if entry[1] == label), None)

    def x(self, *command):
        return subprocess.run(command, env=self.environment, capture_output=True, text=True, check=False).stdout

    def window(self):
        return self.x("xdotool", "search", "--onlyvisible", "--name", "^Orrinvale$").split()

    def close_window(self):
        self.x("xdotool", "key", "--window", self.window()[0], "ctrl+w")

    def end(self):
        for process in reversed(self.processes):
            process.send_signal(signal.SIGCONT)
            process.terminate()
            try:
                process.communicate(timeout=5)
            except subprocess.TimeoutExpired:
                process.kill()
                process.communicate()


class InTheTray(unittest.TestCase):
    def setUp(self):
        for name in ("Xvfb", "xdotool", "dbus-daemon", "nsenter"):
            if not shutil.which(name):
                self.skipTest(f"no {name} here")
        if os.geteuid() != 0:
            self.skipTest("only root may mount")
        if subprocess.run(["/usr/bin/python3", "-c", "import dbus, gi"], capture_output=True, check=False).returncode:
            self.skipTest("no dbus for Python here")
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def session(self, **options):
        session = Session(self.folder, **options)
        self.addCleanup(session.end)
        session.run_program()
        return session

    def test_the_item_comes_with_the_host_and_its_menu_is_complete(self):
        on = self.session()
        self.assertEqual(on.items(), [])
        on.show_tray()
        self.assertTrue(until(on.items), "the host came behind the program")
        self.assertTrue(until(lambda: len(on.menu()) > 8))
        labels = [re.sub(r"[\d.]+ .?B", "N", label) for _, label, _ in on.menu()]
        self.assertEqual(labels[0], "Internal Disks")
        self.assertEqual(labels[1], "System: N free of N")
        self.assertIn(f"{ODD}: N free of N", labels)
        self.assertEqual(labels[-6:], ["---", "Eject All", "---", "Main Window", "---", "Quit Orrinvale"])
        self.assertTrue(on.tell("tooltip")[0].startswith("System"), on.tell("tooltip"))
        self.assertTrue(on.tell("pictures"))

        # A host that was restarted gets the item without a word from anybody.
        on.tell("watcher off")
        on.tell("watcher on")
        self.assertTrue(until(on.items), "the host was restarted")
        on.tell("layouts 300")
        self.assertIsNotNone(on.entry("Main Window"))

    def test_entries_do_what_they_say_and_those_of_an_old_menu_nothing(self):
        on = self.session()
        on.show_tray()
        self.assertTrue(until(on.items))
        self.assertTrue(until(lambda: on.entry("Main Window")))
        stale = {entry[0] for entry in on.menu()}
        on.in_mounts("umount", f"/mnt/{ODD}")
        self.assertTrue(until(lambda: not any(ODD in entry[1] for entry in on.menu())), "the menu is made anew")
        self.assertTrue(stale.isdisjoint(entry[0] for entry in on.menu()), "no id has two meanings")
        on.close_window()
        self.assertTrue(until(lambda: not on.window()))
        for number in stale:
            on.tell(f"click {number}")
        time.sleep(0.3)
        self.assertEqual(on.window(), [])
        self.assertIsNone(on.program.poll())
        on.tell(f"click {on.entry('Main Window')[0]}")
        self.assertTrue(until(on.window))
        on.tell(f"click {on.entry('Quit Orrinvale')[0]}")
        self.assertEqual(until(lambda: on.program.poll()), 1)

    def test_an_ejection_that_fails_is_told_and_the_entry_stays(self):
        image = f"{self.folder}/image"
        if subprocess.run(f"truncate -s 8M {image} && mkfs.ext4 -q {image}", shell=True, capture_output=True, check=False).returncode:
            self.skipTest("no mkfs.ext4 here")
        on = self.session()
        on.show_tray()
        self.assertTrue(until(on.items))
        try:
            on.in_mounts("sh", "-c", f"mkdir /mnt/image && mount -o loop {image} /mnt/image")
        except subprocess.CalledProcessError:
            self.skipTest("no loop device here")
        self.assertTrue(until(lambda: on.entry("Eject image")), on.menu())
        self.assertEqual(on.entry("Eject All")[2], "")
        holder = on.start(["nsenter", "-t", str(on.program.pid), "-m", "sh", "-c", "cd /mnt/image && exec sleep 60"])
        self.assertTrue(until(lambda: os.readlink(f"/proc/{holder.pid}/cwd") == "/mnt/image"))
        on.tell(f"click {on.entry('Eject image')[0]}")
        self.assertTrue(until(lambda: "Eject the volume" in (on.folder / "errors").read_text(encoding="utf-8")), "it is told")
        self.assertTrue(until(lambda: on.entry("Eject image")), "it stays, and can be ejected again")

    def test_where_no_tray_shows_it_a_close_asks_and_the_answer_is_remembered(self):
        on = self.session(bus=False)
        time.sleep(1)  # whether there is a tray is known by then
        on.close_window()
        time.sleep(1)
        self.assertTrue(on.window(), "a question stands over it")
        on.x("xdotool", "key", "--window", on.window()[0], "Return")
        self.assertTrue(until(lambda: not on.window()))
        self.assertIsNone(on.program.poll())
        on.x(PROGRAM)
        self.assertTrue(until(on.window))
        on.close_window()
        self.assertTrue(until(lambda: not on.window()), "without a word")
        stored = (Path(self.folder) / "config/com.kelpford.Orrinvale/settings.ini")
        self.assertTrue(until(lambda: stored.exists() and "keepRunning = true" in stored.read_text(encoding="utf-8")))

    def test_a_remembered_quit_ends_it(self):
        on = self.session(bus=False, settings="keepRunning = false")
        time.sleep(1)
        on.close_window()
        self.assertEqual(until(lambda: on.program.poll()), 1)

    def test_a_hidden_item_stays_out_of_the_tray(self):
        on = self.session(settings="ZvShowStatusItem = true")
        on.show_tray()
        time.sleep(3)  # longer than any item takes
        self.assertEqual(on.items(), [])

    def test_a_tray_of_x11_that_comes_late_gets_the_item_and_a_click_opens_the_rows(self):
        if not shutil.which("trayer"):
            self.skipTest("no trayer here")
        on = self.session(bus=False)
        on.start(["trayer", "--edge", "top", "--align", "right", "--widthtype", "pixel", "--width", "80"])
        docked = lambda: re.findall(r'(0x[0-9a-f]+) "Orrinvale": \("orrinvale" "Orrinvale"\)  \d\dx\d\d\+0\+0', on.x("xwininfo", "-root", "-tree"))
        self.assertTrue(until(docked, 15), on.x("xwininfo", "-root", "-tree"))
        on.x("xdotool", "mousemove", "--window", docked()[0], "10", "10", "click", "1")
        popup = lambda: re.findall(r" 3\d\dx\d{3}\+", on.x("xwininfo", "-root", "-tree"))
        self.assertTrue(until(popup), on.x("xwininfo", "-root", "-tree"))
        if place := os.environ.get("ORRINVALE_PICTURES"):
            time.sleep(0.5)
            on.x("import", "-window", "root", f"{place}/tray.png")
        on.x("xdotool", "key", "Escape")
        self.assertTrue(until(lambda: not popup()))


if __name__ == "__main__":
    result = unittest.main(exit=False, verbosity=2).result
    sys.exit(1 if not result.wasSuccessful() or not result.testsRun else SKIPPED if result.skipped else 0)
