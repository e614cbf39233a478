#!/usr/bin/env python3
"""Proves the direction of includes in src/: who may stand on whom.

    check_includes.py [SRC]      checks a source folder (this project's src/), one line per offence, status 1 if there is any
    check_includes.py --self-test
"""
import contextlib
import io
import re
import sys
import tempfile
from pathlib import Path

# A folder may include what stands on a lower floor, or its own.
FLOOR = {"platform": 0, "engine": 1, "services": 2, "ui": 3, "app": 4, "cli": 4, "helper": 4, "gallery": 4, "preview": 4}
# The places where the pieces are put together; they alone know which implementation of an interface is used.
COMPOSITION_ROOTS = {"app", "cli", "helper", "gallery", "preview"}
IMPLEMENTATIONS = ("platform/linux/", "platform/macos/", "platform/fake/")
# These are built on machines that have no Qt, and services are Qt through and through.
WITHOUT_QT = {"engine", "cli", "helper"}
# Floors with subsystems, which stand beside and on each other without a circle.
WITHOUT_CIRCLES = {"engine", "services", "ui"}
GENERATED = re.compile(r"(ui_\w+\.h|\w+\.moc|moc_\w+\.cpp)$")
INCLUDE = re.compile(r'\s*#\s*include\s*([<"])([^>"]+)[>"]')
BLOCK_COMMENT = re.compile(r"/\*.*?\*/", re.DOTALL)


def includes_of(path):
    """(line, is quoted, name) of every include that the compiler would see."""
    text = path.read_text(encoding="utf-8", errors="replace")
    text = BLOCK_COMMENT.sub(lambda found: "\n" * found.group().count("\n"), text)
    for number, line in enumerate(text.splitlines(), 1):
        found = INCLUDE.match(line)
        if found:
            yield number, found.group(1) == '"', found.group(2)


def is_implementation(name):
    return name.startswith(IMPLEMENTATIONS)


def is_qt(name):
    return re.match(r"Q[A-Z]|Qt[A-Z]\w*/", name) is not None


def direction_offence(source, target):
    """Why the file `source` may not include the file `target`, both relative to src/; None when it may."""
    here, there = source.split("/")[0], target.split("/")[0]
    if there not in FLOOR:
        return "unknown-folder", f"{there}/ stands on no floor"
    if here != there and FLOOR[there] > FLOOR[here]:
        return "upward", f"{here}/ stands below {there}/"
    if here != there and FLOOR[there] == FLOOR[here]:
        return "sideways", f"{here}/ and {there}/ are programs of their own"
    if here in ("cli", "helper") and there in ("ui", "services"):
        return "window-code", f"{here}/ is built where there are no windows, {there}/ is not"
    if is_implementation(target) and here not in COMPOSITION_ROOTS and not is_implementation(source):
        return "implementation", "only app/, cli/, helper/ and tests choose an implementation; include the interface"
    return None


def qt_banned(source):
    top = source.split("/")[0]
    return top in WITHOUT_QT or (top == "platform" and source.count("/") == 1)


def subsystem(path):
    """The folder that counts as one where circles are looked for: a subsystem with what is below it; of ui/kit each kit by itself."""
    folders = path.split("/")[:-1]
    depth = 3 if folders[:2] == ["ui", "kit"] else 2
    return "/".join(folders[:depth]) if folders[0] in WITHOUT_CIRCLES and len(folders) >= depth else None


def cycle_through(edges, start):
    """The shortest way from `start` back to itself along the edges, as a list of names; empty when there is none."""
    queue, came_from = [start], {}
    for node in queue:
        for following in sorted(edges.get(node, {})):
            if following == start:
                way = [node]
                while way[-1] != start:
                    way.append(came_from[way[-1]])
                return way[::-1] + [start]
            if following not in came_from:
                came_from[following] = node
                queue.append(following)
    return []


def cycle_offences(edges):
    reported = set()
    for start in sorted(edges):
        way = cycle_through(edges, start)
        if way and frozenset(way) not in reported:
            reported.add(frozenset(way))
            source, line = edges[way[0]][way[1]]
            yield source, line, "cycle", " -> ".join(way)


def check(src):
    """(number of files, offences), an offence being (file relative to src, line, kind, message)."""
    offences, edges = [], {}
    paths = sorted(path for path in src.rglob("*") if path.suffix in (".h", ".cpp", ".mm") and path.is_file())
    for path in paths:
        source = path.relative_to(src).as_posix()
        if source.split("/")[0] not in FLOOR:
            offences.append((source, 1, "unknown-folder", f"{source.split('/')[0]} stands on no floor"))
            continue
        for line, quoted, name in includes_of(path):
            if is_qt(name) and qt_banned(source):
                offences.append((source, line, "qt", f"{name}: this is built on machines with no Qt"))
            target = src / name
            known = target.is_file() and ".." not in name.split("/")
            generated = GENERATED.match(name) or (path.parent / (name + ".in")).is_file()
            if quoted and not known and not is_qt(name) and not generated:
                offences.append((source, line, "unresolved", f'"{name}" does not name a file below src/'))
            if not known:
                continue
            offence = direction_offence(source, name)
            if offence:
                offences.append((source, line, *offence))
            here, there = subsystem(source), subsystem(name)
            if here and there and here != there and here.split("/")[0] == there.split("/")[0]:
                edges.setdefault(here, {}).setdefault(there, (source, line))
    offences.extend(cycle_offences(edges))
    return len(paths), offences


def report(src):
    count, offences = check(src)
    for source, line, kind, message in offences:
        print(f"{src.name}/{source}:{line}: {kind}: {message}")
    if not count:
        print(f"no sources below {src}")
    print(f"{count} files, {len(offences)} offences")
    return 1 if offences or not count else 0


# A tree in which every line is either right or wrong in one known way: file -> (include, kind of offence or None).
SELF_TEST_TREE = {
    "platform/files.h": [("<string>", None), ('"platform/error.h"', None), ("<QString>", "qt"),
                         ('"platform/linux/LinuxFiles.h"', "implementation"), ('"engine/base/Log.h"', "upward")],
    "platform/error.h": [],
    "platform/linux/LinuxFiles.h": [('"platform/files.h"', None), ('"platform/linux/Other.h"', None)],
    "platform/linux/Other.h": [("<QSocketNotifier>", None)],
    "platform/fake/FakeFiles.h": [('"platform/files.h"', None)],
    "engine/base/Log.h": [("<cstdint>", None), ("<QtCore/QObject>", "qt"), ('"QString"', "qt")],
    "engine/files/Walk.cpp": [('"engine/base/Log.h"', None), ('"engine/duplicates/Find.h"', None),
                              ('"platform/linux/LinuxFiles.h"', "implementation"),
                              ('"platform/fake/FakeFiles.h"', "implementation"), ('"Walk.h"', "unresolved"),
                              ('"engine/files/../base/Log.h"', "unresolved"), ('"ui_Page.h"', None), ('"table.h"', None)],
    "engine/files/table.h.in": [],
    "engine/files/Walk.h": [],
    # One report for a cycle, at the edge that comes first by name.
    "engine/duplicates/Find.h": [('"engine/files/Walk.h"', "cycle"), ('"services/foundation/Worker.h"', "upward")],
    # Folders below a subsystem belong to it.
    "engine/files/deep/Part.h": [('"engine/files/Walk.h"', None)],
    "services/foundation/Worker.h": [("<QThread>", None), ('"engine/files/Walk.h"', None), ('"ui/kit/Theme.h"', "upward"),
                                     ('"platform/linux/LinuxFiles.h"', "implementation")],
    "ui/kit/Theme.h": [('"services/foundation/Worker.h"', None), ("<QtWidgets/QWidget>", None),
                       ('"app/Main.h"', "upward")],
    # Of three that stand in a circle; each kit is a folder of its own.
    "ui/kit/chrome/Window.h": [('"ui/kit/dialogs/Sheet.h"', "cycle"), ('"ui/kit/look/Palette.h"', None)],
    "ui/kit/dialogs/Sheet.h": [('"ui/shell/Menu.h"', None), ('"ui/kit/look/Palette.h"', None)],
    "ui/kit/look/Palette.h": [],
    "ui/shell/Menu.h": [('"ui/kit/chrome/Window.h"', None), ('"ui/kit/Theme.h"', None)],
    "app/Main.h": [('"ui/kit/Theme.h"', None), ('"platform/linux/LinuxFiles.h"', None), ('"cli/Command.h"', "sideways")],
    "cli/Command.h": [('"engine/files/Walk.h"', None), ('"platform/linux/LinuxFiles.h"', None), ("<QCoreApplication>", "qt"),
                      ('"ui/kit/Theme.h"', "window-code"), ('"helper/Request.h"', "sideways")],
    "helper/Request.h": [('"services/foundation/Worker.h"', "window-code")],
    "misc/Tool.h": None,
}


def self_test():
    with tempfile.TemporaryDirectory() as folder:
        src = Path(folder) / "src"
        expected = {("misc/Tool.h", 1, "unknown-folder")}
        for name, lines in SELF_TEST_TREE.items():
            path = src / name
            path.parent.mkdir(parents=True, exist_ok=True)
            # The block comment hides an include that would be wrong, and shifts the lines that follow it.
            text = '/*\n#include "app/Hidden.h"\n*/ // #include "app/Hidden.h"\n'
            for number, (include, kind) in enumerate(lines or [], 4):
                text += f"#include {include}\n"
                if kind:
                    expected.add((name, number, kind))
            path.write_text(text, encoding="utf-8")
        _, offences = check(src)
        found = {offence[:3] for offence in offences}
        good = found == expected
        for offence in sorted(expected - found):
            print("not reported:", *offence)
        for offence in sorted(found - expected):
            print("reported, though right:", *offence)
        kinds = {offence[2] for offence in offences}
        print(f"{len(offences)} offences of {len(kinds)} kinds, {'all' if good else 'NOT all'} as expected")
        (src / "misc/Tool.h").unlink()
        empty = Path(folder) / "empty"
        empty.mkdir()
        with contextlib.redirect_stdout(io.StringIO()):
            fails = report(src) == 1 and report(empty) == 1
        return 0 if good and fails else 1


def main(arguments):
    if arguments == ["--self-test"]:
        return self_test()
    if len(arguments) > 1 or (arguments and arguments[0].startswith("-")):
        print(__doc__, file=sys.stderr)
        return 2
    return report(Path(arguments[0] if arguments else Path(__file__).resolve().parents[2] / "src"))


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
