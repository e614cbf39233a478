"""Folders of the system under a layer of memory that this test alone sees: what is changed in them is gone with the test."""
import os
import subprocess
import sys

INSIDE = "ORRINVALE_OWN_MOUNTS"
TRIAL = "mount -t tmpfs none /mnt && mkdir /mnt/a /mnt/b && mount -t overlay o -o lowerdir=/var/log,upperdir=/mnt/a,workdir=/mnt/b /var/log"


def enter(script, *arguments):
    """Returns within mounts of its own, in which it starts the script anew; ends the process with 77 where there are none to be had."""
    if INSIDE in os.environ:
        return
    if os.geteuid() != 0 or subprocess.run(["unshare", "-m", "sh", "-c", TRIAL], capture_output=True, check=False).returncode != 0:
        print("skipped: only root may lay something over the system's folders, and not on every machine")
        sys.exit(77)
    os.execvpe("unshare", ["unshare", "-m", sys.executable, "-B", script, *map(str, arguments)], os.environ | {INSIDE: "1"})


def lay_over(*places):
    memory = "/mnt"
    subprocess.run(["mount", "-t", "tmpfs", "none", memory], check=True)
    for place in places:
        upper, work = (f"{memory}/{kind}{place.replace('/', '-')}" for kind in ("new", "work"))
        os.mkdir(upper)
        os.mkdir(work)
        subprocess.run(["mount", "-t", "overlay", "overlay", "-o", f"lowerdir={place},upperdir={upper},workdir={work}", place],
                       check=True)
