"""The Debian package: what is in it and where, what it asks for, and what lintian says."""
import os
import re
import subprocess
import tempfile
import xml.etree.ElementTree as xml
from pathlib import Path

import support
from support import BUILD, ID, SOURCE, package, run, tool

PROGRAMS = ("usr/bin/orrinvale", "usr/bin/orrinvale-cli", "usr/libexec/orrinvale/orrinvale-helper",
            "usr/libexec/orrinvale/orrinvale-preview")
# Those that only a package has: documents that cmake --install leaves out, and pages that it does not compress.
PACKAGED_ONLY = ("usr/share/doc/", "usr/share/lintian/")


def without_folders(root):
    return {path.relative_to(root).as_posix() for path in Path(root).rglob("*") if not path.is_dir()}


def control(field):
    return run(tool("dpkg-deb"), "--field", package(), field)[1].strip()


class Archive(support.Case):
    def test_files_are_those_of_the_list(self):
        status, text = run(tool("dpkg-deb"), "--contents", package())
        self.assertEqual(status, 0, text)
        found = []
        for line in text.splitlines():
            mode, owner, *_, path = line.split()
            self.assertEqual(owner, "root/root", path)
            if mode.startswith("d"):
                self.assertEqual(mode, "drwxr-xr-x", path)
            else:
                found.append(f"{mode} {path.removeprefix('.')}")
        expected = (SOURCE / "data/package-files.txt").read_text(encoding="utf-8").splitlines()
        self.assertEqual(sorted(found, key=lambda line: line.split()[1]), expected)

    def test_lintian(self):
        # These two look for words and calls in the machine code, and what they find there changes with the compiler.
        accidents = "spelling-error-in-binary,hardening-no-fortify-functions"
        status, text = run(tool("lintian"), "--suppress-tags", accidents, "--fail-on", "error,warning,info", "--display-info",
                           "--tag-display-limit", "0", "--allow-root", package())
        self.assertEqual((status, text.strip()), (0, ""))
        # Each exception comes with its reason, and is still needed.
        overrides = (SOURCE / "data/debian/lintian-overrides").read_text(encoding="utf-8").splitlines()
        for before, line in zip([""] + overrides, overrides):
            self.assertTrue(line.startswith("#") or before.startswith(("#", "orrinvale: " + line.split()[1])), line)

    def test_what_it_asks_for(self):
        depends = re.findall(r"[a-z0-9.+-]+(?= |,|$)", re.sub(r"\(.*?\)", "", control("Depends")))
        for library in ("libc6", "libfmt9", "libplist3", "libqt6core6", "libqt6gui6", "libqt6svg6", "libqt6widgets6", "libsystemd0"):
            self.assertIn(library, depends)
        for name in ("polkitd", "pkexec", "udisks2", "dbus-session-bus", "packagekit", "libssl3", "xdg-utils"):
            self.assertIn(name, control("Recommends"))
        self.assertEqual(control("Section"), "utils")

    def test_programs_are_stripped_and_hardened(self):
        with tempfile.TemporaryDirectory() as root:
            self.quiet(tool("dpkg-deb"), "--extract", package(), root)
            for program in PROGRAMS:
                status, text = run(tool("readelf"), "--wide", "--all", Path(root) / program)
                self.assertEqual(status, 0, text)
                for mark in (r"DYN \(Position-Independent Executable", "BIND_NOW", "GNU_RELRO", "__stack_chk_fail@",
                             r"GNU_STACK .* RW ", r"__\w+_(chk|2)@GLIBC(?<!__stack_chk_fail@GLIBC)"):
                    self.assertTrue(re.search(mark, text), f"{program}: {mark}")
                for mark in (".debug_info", ".symtab", ".comment"):
                    self.assertFalse(mark in text, f"{program}: {mark}")


class Places(support.Case):
    """Who names a place of another installed file names the right one."""

    def check_root(self, root):
        service = (root / f"usr/share/dbus-1/services/{ID}.service").read_text(encoding="utf-8")
        self.assertRegex(service, rf"(?m)^Name={re.escape(ID)}$")
        started = re.search(r"(?m)^Exec=(\S+)$", service).group(1)
        self.assertTrue(os.access(root / started.lstrip("/"), os.X_OK), started)

        policy = xml.parse(root / f"usr/share/polkit-1/actions/{ID}.policy").getroot()
        helper = policy.find(".//annotate[@key='org.freedesktop.policykit.exec.path']").text
        self.assertTrue(os.access(root / helper.lstrip("/"), os.X_OK), helper)
        built_in = (root / helper.lstrip("/")).read_bytes()
        for path in (helper, f"/usr/share/polkit-1/actions/{ID}.policy", "/usr/bin/orrinvale"):
            self.assertTrue(path.encode() + b"\0" in built_in, path)

        entry = (root / f"usr/share/applications/{ID}.desktop").read_text(encoding="utf-8")
        for command in re.findall(r"(?m)^(?:Try)?Exec=(\S+)", entry):
            self.assertTrue(os.access(root / "usr/bin" / command, os.X_OK), command)
        icon = re.search(r"(?m)^Icon=(.*)$", entry).group(1)
        self.assertTrue((root / f"usr/share/icons/hicolor/scalable/apps/{icon}.svg").is_file())
        described = xml.parse(root / f"usr/share/metainfo/{ID}.metainfo.xml").getroot()
        self.assertTrue((root / "usr/share/applications" / described.findtext("launchable")).is_file())
        for binary in described.iter("binary"):
            self.assertTrue((root / "usr/bin" / binary.text).is_file(), binary.text)

    def test_in_the_package(self):
        with tempfile.TemporaryDirectory() as root:
            self.quiet(tool("dpkg-deb"), "--extract", package(), root)
            self.check_root(Path(root))

    def test_cmake_install_puts_the_same_files_below_destdir(self):
        with tempfile.TemporaryDirectory() as place:
            root, packed = Path(place) / "root", Path(place) / "packed"
            done = subprocess.run([tool("cmake"), "--install", BUILD], check=False, capture_output=True, text=True,
                                  env={**os.environ, "DESTDIR": str(root)})
            self.assertEqual(done.returncode, 0, done.stderr)
            self.check_root(root)
            self.quiet(tool("dpkg-deb"), "--extract", package(), packed)
            expected = {re.sub(r"(man1/.*)\.gz$", r"\1", path) for path in without_folders(packed)
                        if not path.startswith(PACKAGED_ONLY)}
            self.assertEqual(without_folders(root), expected)


if __name__ == "__main__":
    support.main()
