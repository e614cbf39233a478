"""What the checks of the package share: where things lie, how tools are run, how a check that can not be made says so."""
import os
import re
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[2]
BUILD = Path(os.environ.get("ORRINVALE_BUILD", SOURCE / "build/release"))
ID = "com.kelpford.Orrinvale"
SKIPPED = 77


def tool(name):
    """The path of a program; the test is skipped where it is missing. Tools for administrators are found too."""
    found = shutil.which(name, path=os.environ["PATH"] + ":/usr/sbin:/sbin")
    if not found:
        raise unittest.SkipTest(f"no {name} here")
    return found


def run(*command, **options):
    """Status and what was printed, both streams together."""
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          stdin=subprocess.DEVNULL, check=False, text=True, errors="replace", **options)
    return done.returncode, done.stdout


def actions(text):
    """The names behind --action in the help of the program with the window."""
    block = re.search(r"(?ms)^  --action NAME (.*?)^  --", text).group(1)
    return re.findall(r"(?<![\w-])[a-z-]+(?=[,:])", block)


def package():
    """The archive that the build made last."""
    archives = sorted((BUILD / "package-test").glob("*.deb"))
    if len(archives) != 1:
        raise AssertionError(f"{len(archives)} archives in {BUILD / 'package-test'}")
    return archives[0]


class Case(unittest.TestCase):
    maxDiff = None

    def quiet(self, *command, **options):
        """The command succeeds and has nothing to say."""
        status, text = run(*command, **options)
        self.assertEqual((status, text.strip()), (0, ""), " ".join(map(str, command)))


def main():
    """Status 77 when a check was skipped and all others passed, so that it is never taken for one that passed."""
    program = unittest.main(module="__main__", exit=False, verbosity=2)
    if not program.result.wasSuccessful() or program.result.testsRun == 0:
        sys.exit(1)
    sys.exit(SKIPPED if program.result.skipped else 0)
