#!/usr/bin/env python3
"""Shows what a clean promises and what the disk gives back, for all kinds of files, on fresh file systems.

    gain.py [CLEANER]

Makes one file system of 2 GiB after the other in build/bench/, with room for 200 MB at a time, in a name space of mounts of its own; needs
root. A home on it has one kind of files to clean, which CLEANER (build/release/bin/orrinvale-cli) removes. One line each: what
the list calls its size, what it promised, and by how much the free space grew.

Exit status: 0 measured, 3 nothing can be measured here.
"""
import json
import os
import random
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
INSIDE = "ORRINVALE_OWN_MOUNTS"
PLACE = Path("/mnt/gain")
HOME = PLACE / "home"
MB = 1_000_000
some = random.Random(3)


def run(*words):
    return subprocess.run(list(map(str, words)), check=True, capture_output=True, text=True).stdout


def write(path, size):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(some.randbytes(size))
    return path


def large(folder):
    for number in range(20):
        write(folder / f"{number}", 5 * MB)


def small(folder):
    for number in range(400):
        write(folder / f"{number}", some.randint(100, 1800))


def in_folders(folder):
    for number in range(2000):
        write(folder / f"{number}/x", 3000)


def linked(folder):
    write(folder / "own", 20 * MB)
    os.link(write(HOME / "Documents/same", 20 * MB), folder / "same")


def sparse(folder):
    with open(folder / "sparse", "wb") as file:
        file.truncate(1 << 30)


def held_open(folder):
    return open(write(folder / "open", 20 * MB), "rb")


def shared(folder):
    run("cp", "--reflink=always", write(HOME / "Documents/big", 20 * MB), folder / "copy")


def in_snapshot(folder):
    write(folder / "big", 20 * MB)
    run("sync")
    run("btrfs", "subvolume", "snapshot", "-r", HOME, PLACE / "taken")


def compressed(folder):
    run("btrfs", "property", "set", folder, "compression", "zstd")
    (folder / "text").write_bytes(b"all the same words " * 1_600_000)


EVERYWHERE = {"20 files of 5 MB": large, "400 files of 0.1 to 1.8 KB": small, "2,000 folders with a file of 3 KB in each": in_folders,
              "20 MB, and 20 MB that have another name elsewhere": linked, "a sparse file of 1 GiB": sparse,
              "20 MB that a program has open": held_open}
KINDS = {"ext4": EVERYWHERE, "btrfs": EVERYWHERE | {"a copy of 20 MB that shares its space": shared,
                                                    "20 MB that a snapshot holds": in_snapshot, "30 MB of text, compressed": compressed}}


def measure(cleaner, system, name, make):
    image = ROOT / f"build/bench/{system}.img"
    image.parent.mkdir(parents=True, exist_ok=True)
    image.unlink(missing_ok=True)
    run("truncate", "-s", "2G", image)
    run(f"mkfs.{system}", "-q", image)
    PLACE.mkdir(exist_ok=True)
    run("mount", "-o", "loop", image, PLACE)
    if system == "btrfs":
        run("btrfs", "subvolume", "create", HOME)
    # What a program has open stays, but for what was thrown away.
    category, folder = ("user-trash", ".local/share/Trash/files") if make is held_open else ("user-downloads", "Downloads")
    (HOME / folder / "row").mkdir(parents=True)
    holder = make(HOME / folder / "row")
    run("sync")
    done = subprocess.run([cleaner, "clean", "--category", category, "--remove", "--yes", "--json"], capture_output=True, text=True,
                          env={"HOME": str(HOME), "PATH": "/usr/bin:/bin"}, check=False)
    document = json.loads(done.stdout)
    size = document["categories"][0]["size"]
    print(f"{system:6}{name:52}{size / MB:10.2f}{document['promised'] / MB:10.2f}{document['gained'] / MB:10.2f}"
          + (f"  {document['failed']}" if done.returncode else ""), flush=True)
    if holder is not None:
        holder.close()
    run("umount", PLACE)
    image.unlink()


def main():
    cleaner = Path(sys.argv[1] if len(sys.argv) > 1 else ROOT / "build/release/bin/orrinvale-cli").resolve()
    if os.geteuid() != 0:
        print("only root can make file systems and mount them")
        sys.exit(3)
    if INSIDE not in os.environ:
        os.execvpe("unshare", ["unshare", "-m", sys.executable, "-B", __file__, str(cleaner)], os.environ | {INSIDE: "1"})
    run("mount", "-t", "tmpfs", "none", "/mnt")
    print(f"{'MB':58}{'length':>10}{'promised':>10}{'gained':>10}")
    for system, kinds in KINDS.items():
        for name, make in kinds.items():
            measure(cleaner, system, name, make)


if __name__ == "__main__":
    main()
