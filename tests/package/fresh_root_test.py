#!/usr/bin/env python3
"""Installs the package in a fresh system, uses it as a person would, removes it, and looks for what it left behind.

    fresh_root_test.py                              an overlay over this machine's own root, without network
    fresh_root_test.py --debootstrap ARCHIVE DIR    a minimal Debian in DIR, where apt fetches what the package needs

Both run in name spaces of their own, so that mounts and processes end with them. Status 77: this machine refuses those.
"""
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

import support
from support import ID, SOURCE

INSIDE = "ORRINVALE_FRESH_ROOT"
PERSON, HOME = 61234, "home/person"
# What dpkg keeps for itself, what the triggers of other packages write anew, and what belongs to the person.
KEPT = re.compile(r"var/lib/dpkg(/.*)?|var/log/(dpkg|alternatives)\.log|var/cache/man(/.*)?|"
                  r"usr/share/icons/hicolor/icon-theme\.cache|usr/share/applications/(mimeinfo|desktop)\.cache|"
                  rf"{HOME}(/.*)?")


def skip(reason):
    print(f"skipped: {reason}")
    sys.exit(support.SKIPPED)


def must(holds, what):
    if not holds:
        print(f"failed: {what}")
        sys.exit(1)
    print(f"ok: {what.splitlines()[0]}")


class Root:
    """A system in a folder."""

    def __init__(self, path):
        self.path = Path(path)

    def mount(self):
        for folder in ("proc", "dev", "mnt", "run", "etc/dpkg/dpkg.cfg.d"):
            (self.path / folder).mkdir(parents=True, exist_ok=True)
        for options in (("-t", "proc", "proc", "proc"), ("--rbind", "/dev", "dev"), ("-t", "tmpfs", "none", "mnt"),
                        # Images for containers leave manual pages out by a file in that folder.
                        ("-t", "tmpfs", "none", "run"), ("-t", "tmpfs", "none", "etc/dpkg/dpkg.cfg.d")):
            subprocess.run(["mount", *options[:-1], self.path / options[-1]], check=True)

    def run(self, *command, as_person=False):
        user = ["setpriv", f"--reuid={PERSON}", f"--regid={PERSON}", "--clear-groups"] if as_person else []
        environment = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "HOME": f"/{HOME}" if as_person else "/root",
                       "LC_ALL": "C.UTF-8", "QT_QPA_PLATFORM": "offscreen", "XDG_RUNTIME_DIR": "/run/person",
                       "DEBIAN_FRONTEND": "noninteractive"}
        return support.run("chroot", self.path, *user, *command, env=environment, cwd="/")

    def expect(self, what, *command, as_person=False, status=0):
        got, text = self.run(*command, as_person=as_person)
        must(got == status, f"{what}" + (f" (status {got})\n{text}" if got != status else ""))
        return text


def make_person(root):
    home = root.path / HOME
    for name in ("Pictures/a.txt", "Pictures/b.txt", f".config/{ID}/kept by hand"):
        (home / name).parent.mkdir(parents=True, exist_ok=True)
        (home / name).write_text("the same in both")
    runtime = root.path / "run/person"
    runtime.mkdir(mode=0o700)
    for entry in (runtime, home, *home.rglob("*")):
        os.chown(entry, PERSON, PERSON)


def use(root):
    """What a person does first with a new program."""
    for line in (SOURCE / "data/package-files.txt").read_text(encoding="utf-8").splitlines():
        mode, path = line.split()
        if not (root.path / path.lstrip("/")).is_file():
            must(False, f"{mode} {path} is there")
    version = root.expect("the terminal command starts", "orrinvale-cli", "--version", as_person=True)
    packed = root.expect("dpkg knows the version", "dpkg-query", "-W", "-f", "${Version}", "orrinvale")
    must(version.strip() == packed.split("-")[0], "both tell the same version")
    text = root.expect("it searches", "orrinvale-cli", "duplicates", "--json", f"/{HOME}/Pictures", as_person=True)
    must([len(group["leaves"]) for group in json.loads(text)["groups"]] == [2], "it finds the two equal files")
    for page in ("orrinvale", "orrinvale-cli"):
        text = root.expect(f"man finds {page}(1)", "man", "-w", page, as_person=True)
        must(text.strip() == f"/usr/share/man/man1/{page}.1.gz", f"it is our page: {text.strip()}")
    # It stays until it is told to end, which is how `timeout` tells a program that did not end by itself.
    text = root.expect("the window program stays open", "timeout", "--signal=TERM", "2", "orrinvale", as_person=True,
                       status=124)
    must(not re.search("could not|cannot|error|failed", text, re.I), f"it has nothing to complain of\n{text}")


def remove(root):
    root.expect("it is removed", "dpkg", "--remove", "orrinvale")
    root.expect("it is purged", "dpkg", "--purge", "orrinvale")
    must(root.run("dpkg-query", "-W", "orrinvale")[0] != 0, "dpkg has forgotten it")
    must((root.path / HOME / f".config/{ID}/kept by hand").is_file(), "the person's settings are still there")


def is_same(one, other):
    """A trigger of another package may write a file anew that then is what it was, as mailcap's does."""
    if one.is_symlink() or other.is_symlink():
        return one.is_symlink() and other.is_symlink() and os.readlink(one) == os.readlink(other)
    if one.is_dir() or other.is_dir():
        return one.is_dir() and other.is_dir()
    if not one.is_file() or not other.is_file():
        return False
    looks = [(look.st_mode, look.st_uid, look.st_gid, look.st_size) for look in (one.stat(), other.stat())]
    return looks[0] == looks[1] and one.read_bytes() == other.read_bytes()


def left_in(upper, lower):
    """What the layer holds that was not there before or was another, and what it hides of what was there."""
    left = []
    for path in upper.rglob("*"):
        name = path.relative_to(upper).as_posix()
        if not is_same(path, lower / name) and not KEPT.fullmatch(name) and not HOME.startswith(name + "/"):
            left.append(name)
    return sorted(left)


def prove_left_in():
    """That it finds each kind of thing, before it is trusted to find nothing."""
    with tempfile.TemporaryDirectory() as place:
        upper, lower = Path(place, "upper"), Path(place, "lower")
        for side, text in ((upper, "new"), (lower, "old")):
            (side / "etc").mkdir(parents=True)
            (side / "etc/changed").write_text(text)
            for name in ("etc/same", "etc/mode"):
                (side / name).write_text("one text")
            (side / "etc/link").symlink_to(text)
            (side / "etc/kept link").symlink_to("somewhere")
        (upper / "etc/mode").chmod(0o600)
        (upper / "etc/added").mkdir()
        os.mkfifo(upper / "etc/pipe")
        expected = [f"etc/{name}" for name in ("added", "changed", "link", "mode", "pipe")]
        must(left_in(upper, lower) == expected, "what is left is told by content, mode and kind")


def overlay():
    prove_left_in()
    lower = Path("/")
    # The layer lives in memory below a folder that the root itself hides then.
    layer = Path(os.environ[INSIDE])
    if support.run("mount", "-t", "tmpfs", "none", layer)[0]:
        skip("this machine refuses mounts")
    for name in ("upper", "work", "root"):
        (layer / name).mkdir()
    options = f"lowerdir=/,upperdir={layer}/upper,workdir={layer}/work"
    done = support.run("mount", "-t", "overlay", "overlay", "-o", options, layer / "root")
    if done[0]:
        skip(f"no overlay over the root of this machine: {done[1].strip()}")
    root = Root(layer / "root")
    if not all((root.path / name).exists() for name in ("usr/bin/dpkg", "var/lib/dpkg/status")):
        skip("the system lies on several file systems, or is no Debian")
    if support.run("dpkg-query", "-W", "orrinvale")[0] == 0:
        skip("the package is installed on this machine already")
    try:
        root.mount()
    except subprocess.CalledProcessError as refused:
        skip(f"this machine refuses mounts: {refused}")
    before = left_in(layer / "upper", lower)
    make_person(root)
    shutil.copy(support.package(), root.path / "mnt/orrinvale.deb")
    root.expect("it is installed", "dpkg", "--install", "/mnt/orrinvale.deb")
    use(root)
    must("usr/bin/orrinvale" in left_in(layer / "upper", lower), "its files show in the layer while it is installed")
    remove(root)
    left = [name for name in left_in(layer / "upper", lower) if name not in before]
    must(not left, "nothing is left behind\n" + "\n".join(left))


def debootstrapped(archive, folder):
    made = support.run(support.tool("debootstrap"), "--variant=minbase", "bookworm", folder)[0]
    must(made == 0, "a minimal Debian is there")
    root = Root(Path(folder).resolve())
    root.mount()
    shutil.copy("/etc/resolv.conf", root.path / "etc/resolv.conf")
    make_person(root)
    shutil.copy(archive, root.path / "mnt/orrinvale.deb")
    root.expect("apt has its lists", "apt-get", "update")
    must("Installed: (none)" in root.run("apt-cache", "policy", "libqt6gui6")[1], "no window libraries are there yet")
    install = ("apt-get", "install", "-y", "--no-install-recommends")
    print(root.expect("apt installs it with what it depends on", *install, "/mnt/orrinvale.deb"))
    wanted = root.run("dpkg-query", "-W", "-f", "${Recommends}", "orrinvale")[1].split(",")
    root.expect("what it recommends can be had", "apt-get", "install", "--simulate",
                *(alternatives.split("|")[0].strip() for alternatives in wanted))
    root.expect("and a reader of manual pages", *install, "man-db")
    use(root)
    remove(root)
    _, text = root.run("find", "/", "-xdev", "-iname", "*orrinvale*", "-print")
    kept = (f"/{HOME}/", "/var/cache/apt/", "/mnt/")
    left = [name for name in text.split("\n") if name and not name.startswith(kept)]
    must(not left, "nothing is left behind\n" + "\n".join(left))


def main(arguments):
    if INSIDE in os.environ:
        return debootstrapped(*arguments[1:]) if arguments else overlay()
    if os.geteuid() != 0:
        skip("only root can change its root")
    spaces = ["--mount", "--pid", "--fork"] + ([] if arguments else ["--net"])
    if support.run("unshare", *spaces, "true")[0]:
        skip("no name spaces on this machine")
    with tempfile.TemporaryDirectory() as layer:
        done = subprocess.run(["unshare", *spaces, sys.executable, "-B", __file__, *arguments], check=False,
                              env={**os.environ, INSIDE: layer})
    sys.exit(done.returncode)


if __name__ == "__main__":
    main(sys.argv[1:])
