#!/usr/bin/env python3
"""Draws docs/screenshots/terminal.svg: what the search prints on a small folder, run for real.

    terminal.py PROGRAM

The folder is made anew in a temporary place with fixed contents, so that the picture changes only when the output does.
"""
import re
import shutil
import subprocess
import sys
import tempfile
from html import escape
from pathlib import Path

FONT, LINE, LEFT, TOP = 14, 21, 24, 62
CHARACTER = 8.43  # advance of a monospaced font of this size


def make_folder(root: Path) -> None:
    photo = bytes(range(256)) * 12_200
    song = bytes(reversed(range(256))) * 31_000
    letter = b"Dear Anna,\n" * 240
    files = {
        "2025/sunrise.jpg": photo, "2026/copy of sunrise.jpg": photo, "phone/IMG_2041.jpg": photo,
        "music/aria.mp3": song, "downloads/aria (1).mp3": song,
        "letters/anna.txt": letter, "letters/old/anna.txt": letter, "notes.txt": b"milk, bread",
        "tools/Viewer.app/Contents/viewer": photo[:90_000], "backup/Viewer.app/Contents/viewer": photo[:90_000],
    }
    for name, content in files.items():
        path = root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)


def run(program: str) -> str:
    base = Path(tempfile.mkdtemp())
    try:
        folder = base / "Pictures"
        make_folder(folder)
        done = subprocess.run([program, "duplicates", str(folder)], capture_output=True, text=True, check=True)
        # The order in a group follows the folder's listing, which the file system chooses.
        return "$ orrinvale-cli duplicates ~/Pictures\n" + done.stdout.replace(str(base), "/home/anna")
    finally:
        shutil.rmtree(base)


def draw(text: str) -> str:
    lines = text.rstrip("\n").split("\n")
    width = int(LEFT * 2 + CHARACTER * max(len(line) for line in lines))
    height = TOP + LINE * len(lines) + 10
    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" viewBox="0 0 {width} {height}" '
           f'role="img" aria-label="The duplicate search in a terminal">',
           f'<rect width="{width}" height="{height}" rx="10" fill="#16191d"/>',
           f'<path d="M0 10a10 10 0 0 1 10-10H{width - 10}a10 10 0 0 1 10 10V34H0Z" fill="#23282e"/>']
    for index, colour in enumerate(("#ec6a5e", "#f4bf4f", "#61c554")):
        out.append(f'<circle cx="{22 + 20 * index}" cy="17" r="6" fill="{colour}"/>')
    out.append(f'<g font-family="DejaVu Sans Mono, Menlo, Consolas, monospace" font-size="{FONT}" xml:space="preserve">')
    for number, line in enumerate(lines):
        y = TOP + LINE * number
        head = re.match(r"(\S.*?)(  \d+ cop(?:y|ies) of .*)$", line)
        if line.startswith("$"):
            spans = [("#61c554", "$ "), ("#f2f4f6", line[2:])]
        elif head:
            spans = [("#f2f4f6", head[1]), ("#8b96a3", head[2])]
        elif line.startswith("  "):
            spans = [("#b9c2cc", line)]
        else:
            spans = [("#7cc0f4", line)]
        tspans = "".join(f'<tspan fill="{colour}">{escape(part)}</tspan>' for colour, part in spans)
        out.append(f'<text x="{LEFT}" y="{y}">{tspans}</text>')
    out.append("</g></svg>")
    return "\n".join(out) + "\n"


def main() -> int:
    if len(sys.argv) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    target = Path(__file__).with_name("terminal.svg")
    target.write_text(draw(run(sys.argv[1])))
    print(target)
    return 0


if __name__ == "__main__":
    sys.exit(main())
