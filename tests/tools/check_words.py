#!/usr/bin/env python3
"""Looks through every file of the project (tracked, or new and not ignored) for what must not stand there.

    check_words.py [--only words|names] [ROOT]     one line per offence, status 1 if there is any
    check_words.py --self-test

Words: names of papers that readers of the code can not see, calls that lose data or depend on the locale, marks of
unfinished work, bytes that are not UTF-8, indentation by tabs. Names: those of the files themselves.
"""
import argparse
import contextlib
import io
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

# Put together from pieces, since this file is looked through like every other.
SP = "spec"
LONG = SP + "ification"
PAPERS = re.compile(rf"\b(the {SP}|{LONG}|{SP}\.md|Parts? [0-9]+\.[0-9]+|per (the )?{SP}|as ({SP}ified|required by))\b", re.I)
# The desktop's own standards bear that word in their names, and a reader can look them up.
STANDARDS = re.compile(rf"(desktop.?entry|trash|autostart|base directory) {LONG}", re.I)
UNFINISHED = re.compile(r"\b(" + "|".join(("TO" "DO", "FIX" "ME", "X" "XX")) + r")\b")
BANNED_CALLS = {
    re.compile(r"\bremoveRecursively\b"): "removes by path and follows a link that was put there meanwhile",
    re.compile(r"\bmoveToTrash\b"): "loses files",
    re.compile(r"\bremove_all\s*\("): "removes by path and follows a link that was put there meanwhile",
    re.compile(r"(?<![\w.>])(?<!QLocale::)system\s*\("): "runs a shell",
    re.compile(r"\b(strto(f|d|ld)|atof|sscanf)\s*\(|\bsto(f|d|ld)\s*\("): "reads numbers by the locale; use std::from_chars",
}
BAD_NAME = re.compile(rf"(?<![A-Za-z])({SP}s?|{LONG}s?)(?![a-z])|(?<=[a-z])S{SP[1:]}(?![a-z])|(?<![a-z])part[-_ .]?[0-9]", re.I)
PLAIN_NAME = re.compile(r"[A-Za-z0-9._+@%/-]+")

CODE = {".cpp", ".h", ".mm"}
INDENTED = CODE | {".py", ".sh", ".cmake"}
TEXT = INDENTED | {".md", ".txt", ".json", ".yml", ".ui", ".svg", ".xml", ".in", ".desktop"}
SCRIPTS = {"dev", "run", "CMakeLists.txt", "LICENSE", ".clang-format", ".clang-tidy", ".gitignore"}

# A comment or a literal, whichever begins first; so a quote in a comment and slashes in a string do no harm.
COMMENT_OR_LITERAL = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\'', re.DOTALL)


def without_comments(text):
    """The text with comments and literals blanked, lines kept."""
    return COMMENT_OR_LITERAL.sub(lambda found: " " + "\n" * found.group().count("\n"), text)


def project_files(root):
    """Paths relative to the root, of what belongs to the project."""
    # A hook of git sets variables that would lead the call into another checkout.
    clean = {key: value for key, value in os.environ.items() if not key.startswith("GIT_")}
    with contextlib.suppress(OSError, subprocess.CalledProcessError):
        listed = subprocess.run(["git", "-C", root, "ls-files", "-co", "--exclude-standard", "-z"], env=clean,
                                check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout
        return sorted(name for name in map(os.fsdecode, listed.split(b"\0")) if name and (root / name).is_file())
    # An unpacked archive: all but what builds leave behind.
    return sorted(path.relative_to(root).as_posix() for path in root.rglob("*") if path.is_file()
                  and not {"build", ".git", ".cache", "__pycache__"} & set(path.relative_to(root).parts))


def name_offences(name):
    if BAD_NAME.search(name):
        yield name, 0, "name", "names a paper that readers can not see"
    if not PLAIN_NAME.fullmatch(name):
        yield name, 0, "name", "has other characters than letters, digits and . _ + @ % -"


def line_offences(name, number, line, indented):
    if PAPERS.search(line) and not STANDARDS.search(line):
        yield name, number, "paper", "names a paper that readers can not see; give the reason itself: " + line.strip()[:80]
    if name.startswith(("src/", "tests/")) and UNFINISHED.search(line):
        yield name, number, "unfinished", line.strip()[:80]
    if indented and re.match(r" *\t", line):
        yield name, number, "tab", "indented by a tab"


def call_offences(name, text):
    for number, line in enumerate(without_comments(text).split("\n"), 1):
        for call, reason in BANNED_CALLS.items():
            found = call.search(line)
            if found:
                yield name, number, "call", f"{found.group().strip(' (')}: {reason}"


def word_offences(root, name):
    path = root / name
    content = path.read_bytes()
    is_text = path.suffix in TEXT or path.name in SCRIPTS
    try:
        text = content.decode("utf-8")
    except UnicodeDecodeError as error:
        if is_text:
            yield name, content.count(b"\n", 0, error.start) + 1, "encoding", "is not UTF-8"
        return
    if "\0" in text:
        return
    indented = path.suffix in INDENTED or path.name in SCRIPTS
    for number, line in enumerate(text.split("\n"), 1):
        yield from line_offences(name, number, line, indented)
    if name.startswith("src/") and path.suffix in CODE:
        yield from call_offences(name, text)


def check(root, only=None):
    """(number of files, offences), an offence being (file, line, kind, message)."""
    names, offences = project_files(root), []
    for name in names:
        if only != "words":
            offences.extend(name_offences(name))
        if only != "names":
            offences.extend(word_offences(root, name))
    return len(names), offences


def report(root, only=None):
    count, offences = check(root, only)
    for name, line, kind, message in offences:
        print(f"{name}:{line}: {kind}: {message}".encode("utf-8", "backslashreplace").decode())
    if not count:
        print(f"no files below {root}")
    print(f"{count} files, {len(offences)} offences")
    return 1 if offences or not count else 0


# file -> lines, each (text, kind of offence or None). What is wrong stands in pieces here too.
SELF_TEST_TREE = {
    "README.md": [("A plain line with TO" "DO, which is no offence outside of src and tests", None),
                  (f"See {SP}.md", "paper"), (f"The Desktop Entry {LONG} says so", None), (f"The {SP} says so", "paper"),
                  ("\ta tab in a text is no offence", None), ("Parts of it, part 2, Part " "2.3", "paper")],
    "src/engine/a.cpp": [("// moveToTrash and system() in a comment are no offence", None),
                         ('log("remove_all( // ");  dir.removeRec' "ursively();", "call"), ("std::filesystem::path(p);", None),
                         ("file.moveToT" "rash();", "call"), ("std::filesystem::remove" "_all(p);", "call"),
                         ("std::sys" "tem(c);", "call"), ("sys" "tem (c);", "call"), ("linuxSystem(c); disk.system(); QLocale::system();", None),
                         ("x = str" "tof(s, e);", "call"), ("x = at" "of(s);", "call"), ("x = std::st" "of(s);", "call"),
                         ("x = std::st" "od(s);", "call"), ("ssc" "anf(s, f);", "call"), ("std::snprintf(b, n, f);", None),
                         (f"// as {SP}ified, as req" "uired by no one", "paper"), (f"// the inspector, special, {SP}ific", None),
                         ("char t[] = \"/tmp/aXXXXXX\";", None), ("// FIX" "ME later", "unfinished"), ("\tint i;", "tab")],
    "tests/a_test.cpp": [("// X" "XX", "unfinished"), ("std::filesystem::remove" "_all(temporary);", None)],
    "tests/b.py": [("  \tpass", "tab")],
    "dev": [(f"# per {SP}", "paper"), ("\ttrue", "tab")],
    "bad_bytes.h": [("int i;", None), ("// caf\udce9", "encoding")],
    "picture.png": [("\udc89PNG", None)],
    f"docs/{SP}-notes.md": [("", "name")],
    f"src/my{SP.title()}.h": [("", "name")],
    "src/Inspector.cpp": [("", None)],
    "docs/part-3.md": [("", "name")],
    "docs/two words.md": [("", "name")],
    "ignored/a.cpp": [("\t// FIX" f"ME: the {SP}", None)],
    ".gitignore": [("ignored/", None)],
}


def self_test():
    with tempfile.TemporaryDirectory() as folder:
        root, expected = Path(folder), set()
        for name, lines in SELF_TEST_TREE.items():
            path = root / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes("\n".join(text for text, _ in lines).encode("utf-8", "surrogateescape"))
            expected |= {(name, 0 if kind == "name" else number, kind) for number, (_, kind) in enumerate(lines, 1) if kind}
        if shutil.which("git"):
            clean = {key: value for key, value in os.environ.items() if not key.startswith("GIT_")}
            subprocess.run(["git", "init", "-q", folder], env=clean, check=True)
        else:
            print("git is not here: that ignored files are left alone was not tested")
            shutil.rmtree(root / "ignored")
        offences = check(root)[1]
        found = {offence[:3] for offence in offences}
        by_halves = {offence[:3] for only in ("words", "names") for offence in check(root, only)[1]}
        with contextlib.redirect_stdout(io.StringIO()):
            fails = report(root) == 1
    for offence in sorted(expected - found):
        print("not reported:", *offence)
    for offence in sorted(found - expected):
        print("reported, though right:", *offence)
    good = found == expected == by_halves and fails
    print(f"{len(offences)} offences of {len({kind for _, _, kind in found})} kinds, {'all' if good else 'NOT all'} as expected")
    return 0 if good else 1


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("root", nargs="?", type=Path, default=Path(__file__).resolve().parents[2])
    parser.add_argument("--only", choices=("words", "names"))
    parser.add_argument("--self-test", action="store_true")
    options = parser.parse_args()
    return self_test() if options.self_test else report(options.root, options.only)


if __name__ == "__main__":
    sys.exit(main())
