"""What BleachBit offers in a home, beside what clean offers and keeps there, as a table."""
import re
from collections import Counter
from pathlib import Path

# Not of a home, or of all free space.
BESIDE = {"system.free_disk_space", "system.localizations", "system.memory", "system.tmp", "system.rotated_logs"}


def previewed(desk, home):
    """Of each option that finds something below that home the paths, relative to it. A preview removes nothing."""
    def below(*options):
        _, output, _ = desk.run("env", f"HOME={home}", "bleachbit", "--preview", *options)
        return {str(Path(path).relative_to(home)) for path in re.findall(rf"(?m)({re.escape(str(home))}/.*)$", output)}
    known = desk.run("env", f"HOME={home}", "bleachbit", "--list")[1].split()
    options = [each for each in known if re.fullmatch(r"[a-z0-9_]+\.[a-z0-9_]+", each) and each not in BESIDE]
    if not options:
        raise RuntimeError("bleachbit lists nothing")
    cleaners = {each.split(".")[0] for each in options}
    telling = {each for each in cleaners if below(*(option for option in options if option.split(".")[0] == each))}
    found = {option: below(option) for option in options if option.split(".")[0] in telling}
    return {option: paths for option, paths in found.items() if paths}


def row_of(path, rows):
    """The row of ours that a path is or lies in."""
    return next((row for row in rows if path == row or path.startswith(row + "/")), None)


def table(desk, home, document):
    """One line for each row of ours and for each option of BleachBit's that finds something outside of these."""
    ours = {}
    for category in document["categories"]:
        for key in ("entries", "kept"):
            for entry in category[key]:
                ours[str(Path(entry["path"]).relative_to(desk.home))] = (
                    category["name"], f"kept: {entry['reason']}" if key == "kept" else "offered", entry["size"])
    met, beside = {row: Counter() for row in ours}, []
    for option, paths in previewed(desk, home).items():
        outside = sorted(path for path in paths if row_of(path, ours) is None)
        for path in paths - set(outside):
            met[row_of(path, ours)][option] += 1
        if outside:
            beside.append(f"{option} | {len(outside)} paths | {', '.join(outside[:6])}")
    lines = [f"{row} | {category}, {verdict}, {size} bytes | {dict(met[row]) or 'nothing'}"
             for row, (category, verdict, size) in ours.items()]
    return "\n".join(["path | clean | BleachBit", *lines, "", "BleachBit alone", *beside])
