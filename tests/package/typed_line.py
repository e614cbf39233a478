"""Types a line, tabs included, into a real shell on a terminal, and tells with which words orrinvale-cli was started.
"""
import os
import pty
import select
import signal
import tempfile
import time
from pathlib import Path

# In place of the program: notes its arguments, and has two volumes.
STAND_IN = r"""#!/bin/sh
if [ "$1" = volumes ] && [ "$2" = -0 ]; then printf '/media/stick one\0/srv/x\0'; exit; fi
printf '%s\0' "$@" >"$ORRINVALE_SEEN.new" && mv "$ORRINVALE_SEEN.new" "$ORRINVALE_SEEN"
"""
PROMPT = "orrinvale-ready> "
SETTING = {
    "bash": (["--norc", "--noprofile", "-i"], "source '{file}'; PS1='orrinvale-''ready> '\n"),
    "zsh": (["-f", "-i"], "fpath=('{folder}' $fpath); autoload -Uz compinit; compinit -D -u; unsetopt beep; "
                          "PS1='orrinvale-''ready> '\n"),
}
SECONDS = 20


def read_until(terminal, condition):
    """What came from the terminal until the condition on it holds; fails after a while."""
    seen, end = b"", time.monotonic() + SECONDS
    while not condition(seen):
        if time.monotonic() > end:
            raise AssertionError("the shell did not answer: " + seen.decode(errors="replace"))
        if select.select([terminal], [], [], 0.02)[0]:
            try:
                seen += os.read(terminal, 65536)
            except OSError as error:
                raise AssertionError("the shell ended: " + seen.decode(errors="replace")) from error
    return seen


def furnish(place):
    """A home folder with something to complete, and a folder with the stand-in for the program."""
    home, programs = place / "home", place / "bin"
    (home / "my folder").mkdir(parents=True)
    (home / "my data.txt").touch()
    (home / "solitary.txt").touch()
    programs.mkdir()
    (programs / "orrinvale-cli").write_text(STAND_IN)
    (programs / "orrinvale-cli").chmod(0o755)
    return home, programs


def typed(shell, program, completion, line):
    """The line is typed in the home folder."""
    with tempfile.TemporaryDirectory() as place:
        seen = Path(place) / "seen"
        home, programs = furnish(Path(place))
        environment = {"PATH": f"{programs}:/usr/bin:/bin", "HOME": str(home), "TERM": "dumb", "LC_ALL": "C.UTF-8",
                       "INPUTRC": "/dev/null", "HISTFILE": "/dev/null", "ORRINVALE_SEEN": str(seen)}
        options, setting = SETTING[shell]
        child, terminal = pty.fork()
        if child == 0:
            os.chdir(home)
            os.execve(program, [program, *options], environment)
        try:
            os.write(terminal, setting.format(file=completion, folder=completion.parent).encode())
            read_until(terminal, lambda text: PROMPT.encode() in text)
            os.write(terminal, line.encode() + b"\n")
            read_until(terminal, lambda _: seen.exists())
            return seen.read_bytes().decode().split("\0")[:-1]
        finally:
            os.kill(child, signal.SIGKILL)
            os.waitpid(child, 0)
            os.close(terminal)
