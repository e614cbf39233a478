"""A desk of its own for a made-up person: a home, a display with a window manager, a bus. Nothing of it is the developer's."""
import contextlib
import os
import shlex
import shutil
import signal
import subprocess
import tempfile
import time
from pathlib import Path

NOBODY = 65534
SIZE = (1280, 800)


def comes_true(condition, seconds):
    """What the condition says as soon as that is something; asked four times a second."""
    end = time.monotonic() + seconds
    while True:
        said = condition()
        if said or time.monotonic() > end:
            return said
        time.sleep(0.25)


class Desk:
    """Everything is started as an ordinary user: as nobody for root, else as whoever runs this."""

    def __init__(self, base):
        self.place = Path(tempfile.mkdtemp(prefix="desk-", dir=base))
        self.home = self.place / "home"
        self.pictures = self.place / "pictures"
        self.user = NOBODY if os.geteuid() == 0 else os.geteuid()
        self.started = []
        runtime = self.place / "run"
        self.environment = {
            "PATH": "/usr/local/bin:/usr/bin:/bin:/usr/games", "HOME": str(self.home), "USER": "nobody", "LANG": "C.UTF-8",
            "XDG_RUNTIME_DIR": str(runtime), "XDG_CURRENT_DESKTOP": "none", "NO_AT_BRIDGE": "1", "GTK_A11Y": "none",
            # Whoever asks the network's manager whether there is one would ask the developer's.
            "DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={runtime}/no-such-bus"}
        for folder, mode in ((self.place, 0o755), (self.home, 0o700), (runtime, 0o700), (self.pictures, 0o755)):
            folder.mkdir(exist_ok=True)
            folder.chmod(mode)
            self.give(folder)

    def __enter__(self):
        self._start_display()
        bus = self.start("dbus-daemon", "--session", "--nofork", "--print-address", stdout=subprocess.PIPE, text=True)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()
        self.start("openbox")
        return self

    def __exit__(self, *_):
        for process in reversed(self.started):
            self.end(process)

    def _start_display(self):
        read, write = os.pipe()
        self.start("Xvfb", "-displayfd", str(write), "-screen", "0", f"{SIZE[0]}x{SIZE[1]}x24", "-nolisten", "tcp",
                   pass_fds=[write])
        os.close(write)
        with os.fdopen(read) as number:
            self.environment["DISPLAY"] = ":" + number.readline().strip()

    def give(self, path):
        if os.geteuid() == 0:
            os.chown(path, self.user, self.user, follow_symlinks=False)

    def write(self, name, text):
        """A file of the person's."""
        path = self.home / name
        for folder in reversed([each for each in path.parents if self.home in each.parents]):
            if not folder.exists():
                folder.mkdir()
                self.give(folder)
        path.write_bytes(text if isinstance(text, bytes) else text.encode())
        self.give(path)
        return path

    def _as_person(self, options):
        if os.geteuid() == 0:
            options |= {"user": self.user, "group": self.user, "extra_groups": []}
        return {"env": self.environment, "cwd": self.home, **options}

    def start(self, *command, **options):
        """A program that runs on; its output goes to a log beside the home."""
        with open(self.place / f"{Path(command[0]).name}.log", "ab") as log:
            process = subprocess.Popen(
                list(map(str, command)), start_new_session=True,
                **self._as_person({"stdin": subprocess.DEVNULL, "stdout": log, "stderr": log} | options))
        self.started.append(process)
        return process

    def run(self, *command, seconds=120, **options):
        """Status, output and what was said on standard error, as text."""
        done = subprocess.run(list(map(str, command)), **self._as_person(
            {"stdin": None if "input" in options else subprocess.DEVNULL, "capture_output": True, "text": True,
             "errors": "replace", "timeout": seconds, "check": False} | options))
        return done.returncode, done.stdout, done.stderr

    def must(self, *command, **options):
        status, output, error = self.run(*command, **options)
        if status != 0:
            raise RuntimeError(f"{shlex.join(map(str, command))}: status {status}: {output}{error}")
        return output

    def end(self, process, seconds=20):
        """Asks the process to end, and then does not ask any more; with it go those that it started."""
        for number in (signal.SIGTERM, signal.SIGKILL):
            with contextlib.suppress(ProcessLookupError):
                os.killpg(process.pid, number)
            with contextlib.suppress(subprocess.TimeoutExpired):
                process.wait(seconds)
                break
        if process in self.started:
            self.started.remove(process)

    # --- what is on the screen ---

    def titles(self):
        """Of all windows, sorted."""
        status, output, _ = self.run("xprop", "-root", "_NET_CLIENT_LIST")
        numbers = output.partition("#")[2].replace(",", " ").split() if status == 0 else []
        return sorted(filter(None, (self.run("xdotool", "getwindowname", number)[1].strip() for number in numbers)))

    def window(self, pattern):
        """The number of the window whose title holds the pattern, once there is one."""
        def look():
            return self.run("xdotool", "search", "--onlyvisible", "--name", pattern)[1].split()
        found = comes_true(look, 60)
        if not found:
            raise RuntimeError(f"no window \"{pattern}\" came; there are {self.titles()}")
        return found[-1]

    def keys(self, pattern, *keys):
        """Presses keys in that window."""
        self.must("xdotool", "windowactivate", "--sync", self.window(pattern), "key", "--delay", "80", *keys)

    def type(self, pattern, text):
        self.must("xdotool", "windowactivate", "--sync", self.window(pattern), "type", "--delay", "40", text)

    def insist(self, do, condition, what):
        """Does it again where it comes to nothing, as one does: a busy program may miss a key."""
        for _ in range(3):
            do()
            if comes_true(condition, 15):
                return
        raise RuntimeError(f"{what}; there are {self.titles()}")

    def picture(self, name):
        """The screen once it has come to rest, in a file."""
        path, former = self.pictures / f"{name}.png", self.pictures / "former.png"
        for _ in range(12):
            self.must("import", "-window", "root", path)
            if former.exists() and self.difference(path, former) < 0.001:
                break
            shutil.copyfile(path, former)
            self.give(former)
            time.sleep(0.7)
        former.unlink(missing_ok=True)
        return path

    def difference(self, one, other):
        """The share of the pixels that are not alike, 0 to 1."""
        _, _, said = self.run("compare", "-metric", "AE", "-fuzz", "10%", one, other, "null:")
        return float(said.split()[0]) / (SIZE[0] * SIZE[1])
