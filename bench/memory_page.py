"""What the page Memory takes of a processor while it is looked at: 300 processes, one of which holds 4 GiB.

usage: memory_page.py PROGRAM [SECONDS]      needs Xvfb; prints utime + stime of the program over that time, and the share of one processor
"""
import os
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

PROCESSES = 300
SIZE = 4 << 30
HOLDER = f"import mmap, time; m = mmap.mmap(-1, {SIZE}); [m.__setitem__(at, 1) for at in range(0, {{}}, 4096)]; time.sleep(10000)"


def ticks(pid):
    """Of the process and of all its threads."""
    fields = Path(f"/proc/{pid}/stat").read_text(encoding="utf-8").rpartition(")")[2].split()
    return int(fields[11]) + int(fields[12])


def main():
    program, seconds = sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 60
    available = next(int(line.split()[1]) for line in open("/proc/meminfo", encoding="utf-8") if line.startswith("MemAvailable")) << 10
    touched = SIZE if available > SIZE + (2 << 30) else 0
    started = []
    with tempfile.TemporaryDirectory() as home:
        environment = os.environ | {"HOME": home, "XDG_CONFIG_HOME": home + "/config", "XDG_RUNTIME_DIR": home, "DISPLAY": ":4711",
                                    "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nonexistent"}
        try:
            started.append(subprocess.Popen(["Xvfb", ":4711", "-nolisten", "tcp", "-screen", "0", "1200x800x24"], stderr=subprocess.DEVNULL))
            started.append(subprocess.Popen([sys.executable, "-c", HOLDER.format(touched)]))
            started += [subprocess.Popen(["sleep", "10000"]) for _ in range(PROCESSES - 1)]
            time.sleep(5)
            run = subprocess.Popen([program, "--action", "memory"], env=environment, stderr=subprocess.DEVNULL)
            started.append(run)
            time.sleep(15)  # its start is not counted
            for action in sys.argv[3:]:
                subprocess.run([program, "--action", action], env=environment, check=True)
            before, began = ticks(run.pid), time.monotonic()
            time.sleep(seconds)
            used = (ticks(run.pid) - before) / os.sysconf("SC_CLK_TCK")
            elapsed = time.monotonic() - began
            print(f"{used:.2f} s in {elapsed:.0f} s: {100 * used / elapsed:.2f} % of one processor; 4 GiB {'resident' if touched else 'mapped'}")
        finally:
            for each in reversed(started):
                each.kill()
                each.wait()


if __name__ == "__main__":
    if not shutil.which("Xvfb"):
        sys.exit("no Xvfb here")
    main()
