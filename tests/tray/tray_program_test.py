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
# Folders of mounts and what a person reads of them.
ODD_NAMES = {ODD: ODD, "two\nlines": "two\u2424lines", "w" * 255: "w" * 255, b"b\xe9b": "b\ufffdb"}
DISK_SERVICES = ["dbus-daemon --system --nofork --nopidfile", "/lib/systemd/systemd-udevd", "/usr/libexec/udisks2/udisksd"]


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
            "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nonexistent", "ORRINVALE_LOG": "0",  # its lines stay on standard error
        }
        assert any(self.start_display(number) for number in range(5)), "no display"
        if bus:
            daemon = self.start(["dbus-daemon", "--session", "--print-address", "--nofork"])
            self.environment["DBUS_SESSION_BUS_ADDRESS"] = daemon.stdout.readline().strip()
            self.start_panel()
        if settings:
            place = self.folder / "config/com.kelpford.Orrinvale/settings.ini"
            place.parent.mkdir(parents=True)
            place.write_text(f"[Orrinvale]\n{settings}\n", encoding="utf-8")

    def start_panel(self):
        self.panel = self.start(["/usr/bin/python3", str(HERE / "status_notifier_host.py")])

    def start_wayland(self):
        """A compositor whose screen is a window of the display, so that keys can be sent."""
        self.start(["weston", "--backend=x11-backend.so", "--use-pixman", "--width=1000", "--height=700", "--idle-time=0", "--socket=tray-test"])
        self.environment |= {"WAYLAND_DISPLAY": "tray-test", "QT_QPA_PLATFORM": "wayland"}
        return until((self.folder / "tray-test").exists)

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

    def run_program(self, *arguments):
        mounts = "for name; do mkdir \"/mnt/$name\" && mount -t tmpfs -o size=1m ram \"/mnt/$name\" || exit 9; done"
        self.program = self.start(["unshare", "-m", "--propagation", "private", "sh", "-c", f"mount -t tmpfs ram /mnt; {mounts}; exec \"$0\" {' '.join(arguments)}",
                                   PROGRAM, *ODD_NAMES])
        is_unseen = "WAYLAND_DISPLAY" in self.environment or "--at-login" in arguments
        is_running = (lambda: "totalSpace" in self.log()) if is_unseen else self.window
        assert until(is_running, 30), f"no window, status {self.program.poll()}: {self.log()}"

    def log(self):
        return (self.folder / "errors").read_text(encoding="utf-8", errors="replace")

    def run_disk_services(self):
        """The real ones, among the program's mounts. False where they do not start."""
        self.in_mounts("sh", "-c", "mount -t tmpfs -o mode=755 ram /run && mkdir /run/dbus /run/udev && mkdir -p /var/lib/udisks2"
                       " && mount -t tmpfs -o mode=700 ram /var/lib/udisks2")
        for service in DISK_SERVICES:
            self.start(["nsenter", "-t", str(self.program.pid), "-m", *service.split()])
            time.sleep(0.3)
        return until(lambda: not self.inside("gdbus", "wait", "--system", "--timeout", "1", "org.freedesktop.UDisks2").returncode)

    def inside(self, *command):
        return subprocess.run(["nsenter", "-t", str(self.program.pid), "-m", *command], capture_output=True, text=True, check=False)

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

    def states(self):
        """Of its main windows, whether they are on the screen or not, what the window manager has made of them."""
        windows = self.x("xdotool", "search", "--name", "^Orrinvale$").split()
        return re.findall("window state: ([A-Za-z]+)", "".join(self.x("xprop", "-id", each, "WM_STATE") for each in windows))

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

    def session(self, wayland=False, **options):
        session = Session(self.folder, **options)
        self.addCleanup(session.end)
        if wayland and not (shutil.which("weston") and session.start_wayland()):
            self.skipTest("no weston here")
        session.run_program()
        return session

    def mount_image(self, on):
        """An image in a loop device, mounted among the program's mounts; the device."""
        image = f"{self.folder}/image"
        made = subprocess.run(f"truncate -s 8M {image} && mkfs.ext4 -q {image} && losetup -f --show {image}", shell=True, capture_output=True,
                              text=True, check=False)
        if made.returncode:
            self.skipTest("no loop device here")
        device = made.stdout.strip()
        self.addCleanup(subprocess.run, ["losetup", "-d", device], capture_output=True, check=False)
        on.in_mounts("sh", "-c", f"mkdir /mnt/image && mount {device} /mnt/image")
        return device

    def assert_ejected(self, on, device):
        self.assertTrue(until(lambda: on.inside("mountpoint", "-q", "/mnt/image").returncode), on.log())
        self.assertTrue(until(lambda: not Path(f"/sys/block/{Path(device).name}/loop").exists()), "its device is let go")

    def test_the_item_comes_with_the_host_and_its_menu_is_complete(self):
        on = self.session()
        self.assertEqual(on.items(), [])
        on.show_tray()
        self.assertTrue(until(on.items), "the host came behind the program")
        self.assertTrue(until(lambda: len(on.menu()) > 8))
        labels = [re.sub(r"[\d.]+ .?B", "N", label) for _, label, _ in on.menu()]
        self.assertEqual(labels[0], "Internal Disks")
        self.assertEqual(labels[1], "System: N free of N")
        for name in ODD_NAMES.values():
            self.assertIn(f"{name}: N free of N", labels)
        self.assertEqual(labels[-6:], ["---", "Eject All", "---", "Main Window", "---", "Quit Orrinvale"])
        self.assertTrue(on.tell("tooltip")[0].startswith("System"), on.tell("tooltip"))
        self.assertTrue(on.tell("pictures"))

        # A host that was restarted gets the item without a word from anybody.
        on.tell("watcher off")
        on.tell("watcher on")
        self.assertTrue(until(on.items), "the host was restarted")
        on.tell("layouts 1000")
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

    def test_a_host_that_dies_with_the_menu_open_takes_nothing_along(self):
        on = self.session()
        on.show_tray()
        self.assertTrue(until(lambda: on.entry("Main Window")))
        self.assertEqual(on.tell("open"), [])
        on.panel.kill()
        on.in_mounts("umount", f"/mnt/{ODD}")  # the menu is made anew meanwhile
        time.sleep(3)
        on.start_panel()
        on.show_tray()
        self.assertTrue(until(lambda: on.entry("Main Window")), "the next host")
        self.assertFalse(any(ODD in entry[1] for entry in on.menu()))
        on.close_window()
        self.assertTrue(until(lambda: not on.window()))
        on.tell(f"click {on.entry('Main Window')[0]}")
        self.assertTrue(until(on.window))

    def test_an_image_is_ejected_from_the_menu_of_the_panel(self):
        on = self.session()
        if not on.run_disk_services():
            self.skipTest("no disk service here")
        on.show_tray()
        device = self.mount_image(on)
        self.assertTrue(until(lambda: on.entry("Eject image")), on.menu())
        on.tell(f"click {on.entry('Eject image')[0]}")
        self.assert_ejected(on, device)
        self.assertTrue(until(lambda: not on.entry("Eject image")), on.menu())

    def test_on_wayland_a_host_gets_the_menu_and_a_click_opens_the_window(self):
        on = self.session(wayland=True)
        on.show_tray()
        self.assertTrue(until(lambda: on.entry("Main Window")), on.log())
        self.assertEqual(on.tell("activate"), [])
        on.tell(f"click {on.entry('Quit Orrinvale')[0]}")
        self.assertEqual(until(lambda: on.program.poll()), 1)

    def test_on_wayland_without_a_host_it_goes_on(self):
        on = self.session(wayland=True, bus=False)
        time.sleep(4)  # by then nobody waits for a tray any more
        self.assertIsNone(on.program.poll())
        on.program.terminate()
        self.assertEqual(until(lambda: on.program.poll()), -signal.SIGTERM)

    def test_without_a_tray_the_menu_of_the_window_ejects_by_the_keyboard(self):
        on = self.session(bus=False)
        if not on.run_disk_services():
            self.skipTest("no disk service here")
        device = self.mount_image(on)
        time.sleep(4)  # a look sees it, and what udev told of it by then
        on.x("xdotool", "windowfocus", "--sync", on.window()[0])
        to_volumes = ["Up"] * 8  # from the last entry of the menu
        for key in ["F10", *to_volumes, "Right", "Up", "Up", "Up", "Up", "Right"]:
            on.x("xdotool", "key", key)
            time.sleep(0.3)
        if place := os.environ.get("ORRINVALE_PICTURES"):
            on.x("import", "-window", "root", f"{place}/menu.png")
        on.x("xdotool", "key", "Return")
        self.assert_ejected(on, device)

    def test_an_ejection_that_fails_is_told_and_the_entry_stays(self):
        on = self.session()
        on.show_tray()
        self.assertTrue(until(on.items))
        self.mount_image(on)
        self.assertTrue(until(lambda: on.entry("Eject image")), on.menu())
        self.assertEqual(on.entry("Eject All")[2], "")
        holder = on.start(["nsenter", "-t", str(on.program.pid), "-m", "sh", "-c", "cd /mnt/image && exec sleep 60"])
        self.assertTrue(until(lambda: os.readlink(f"/proc/{holder.pid}/cwd") == "/mnt/image"))
        on.tell(f"click {on.entry('Eject image')[0]}")
        self.assertTrue(until(lambda: "Eject the volume" in on.log()), "it is told")
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

    def start_hidden(self, *beside):
        """On a desktop with a window manager, as a login starts it."""
        for name in ("openbox", "xprop", *(command[0] for command in beside)):
            if not shutil.which(name):
                self.skipTest(f"no {name} here")
        on = Session(self.folder, settings="ZvLoginItemIsHide = true", bus=False)
        self.addCleanup(on.end)
        for command in (["openbox"], *beside):
            on.start(command)
        on.run_program("--at-login")
        return on

    def test_started_hidden_it_stays_in_the_tray(self):
        on = self.start_hidden(["trayer", "--edge", "top"])
        time.sleep(12)  # a tray is waited for ten seconds
        self.assertEqual(on.states(), [])
        on.x(PROGRAM)
        self.assertTrue(until(lambda: on.states() == ["Normal"]), on.states())

    def test_started_hidden_without_a_tray_it_opens_minimised(self):
        on = self.start_hidden()
        time.sleep(6)
        self.assertEqual(on.states(), [], "a tray may still come")
        self.assertTrue(until(lambda: on.states() == ["Iconic"]), on.states())
        self.assertEqual(on.window(), [])


if __name__ == "__main__":
    result = unittest.main(exit=False, verbosity=2).result
    sys.exit(1 if not result.wasSuccessful() or not result.testsRun else SKIPPED if result.skipped else 0)
