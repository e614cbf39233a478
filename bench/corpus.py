#!/usr/bin/env python3
"""Makes the folders on which the duplicate search is measured, the same bytes on every machine.

    corpus.py ROOT [NAME ...] [--scale F]     all corpora, or the named ones; what is there already is left alone

Contents depend on SEED, the name of the corpus and the number of the content alone. Content i is a 16-byte stamp and then
a stretch of one random 16 MiB block, so making a corpus runs at the speed of memory and no two contents are equal. Files are
created in a shuffled order, as on an aged disk: the order of a folder is neither that of the inodes nor that of the names.

ROOT/NAME.expect.json holds the answer (groups of equal regular files, empty ones left out, hard links counted once) and is
written last. ROOT/NAME.unfinished stands beside a corpus while it is made: a folder that has it was left by an interrupted
run and is made again. A folder that has neither is somebody else's, and is not touched.
"""
import argparse
import hashlib
import json
import os
import random
import shutil
import struct
import sys
import time

SEED = 20260101
KIB, MIB, GIB = 1 << 10, 1 << 20, 1 << 30
BLOCK = 16 * MIB

# Room that a corpus takes on a disk with blocks of 4 KiB at scale 1, rounded up.
DISK_BYTES = {"many-small": 1100 * MIB, "photos": 8000 * MIB, "same-size": 1300 * MIB, "few-huge": 7400 * MIB,
              "deep": 12 * MIB, "wide": 420 * MIB, "links": 130 * MIB, "million": 400 * MIB}

_block = None


def block():
    """The random block twice in a row, so that BLOCK bytes stand behind every offset below BLOCK."""
    global _block
    if _block is None:
        _block = random.Random(SEED).randbytes(BLOCK)
        _block = _block + _block
    return _block


def stamp(corpus, number):
    return hashlib.blake2b(b"%d/%s/%d" % (SEED, corpus.encode(), number), digest_size=16).digest()


def content(corpus, number, size):
    """The pieces of a content."""
    mark = stamp(corpus, number)
    offset = struct.unpack("<Q", mark[:8])[0] % BLOCK
    source = memoryview(block())
    if size <= 16:
        yield mark[:size]
        return
    yield mark
    left = size - 16
    while left:
        count = min(left, BLOCK)
        yield source[offset:offset + count]
        left -= count
        offset = (offset + 4099) % BLOCK  # later pieces of a long content differ from its earlier ones


def write(path, pieces):
    descriptor = os.open(path, os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o644)
    try:
        for piece in pieces:
            piece = memoryview(piece)
            while piece:
                piece = piece[os.write(descriptor, piece):]
    finally:
        os.close(descriptor)


def make_folders(base, count, rng, fan=12):
    """An irregular tree: each new folder hangs below a random earlier one. Without the base itself."""
    folders = [base]
    os.makedirs(base, exist_ok=True)
    while len(folders) < count + 1:
        parent = folders[rng.randrange(max(1, len(folders) // fan))] if len(folders) > fan else base
        folder = os.path.join(parent, "d%05d" % len(folders))
        os.mkdir(folder)
        folders.append(folder)
    return folders[1:]


class Expect:
    """Collects what was made; answer() is what a duplicate search has to find."""

    def __init__(self):
        self.copies = {}
        self.files = 0
        self.bytes = 0

    def add(self, key, size, new_inode=True):
        self.files += 1
        if new_inode:
            self.bytes += size
            if size:
                self.copies[key, size] = self.copies.get((key, size), 0) + 1

    def answer(self):
        groups = [(count, size) for (_, size), count in self.copies.items() if count > 1]
        sizes = {}
        for (_, size), count in self.copies.items():
            sizes[size] = sizes.get(size, 0) + count
        return {"files": self.files, "bytes": self.bytes, "groups": len(groups),
                "files_in_groups": sum(count for count, _ in groups),
                "reclaimable": sum((count - 1) * size for count, size in groups),
                "bytes_in_groups": sum(count * size for count, size in groups),
                "distinct_sizes": len(sizes),
                "size_candidates": sum(count for count in sizes.values() if count > 1),
                "size_candidate_bytes": sum(count * size for size, count in sizes.items() if count > 1)}


def plan_duplicates(rng, files, share):
    """Content numbers for the files, so that `share` of them lie in groups of 2 to 6, mostly 2; and how many contents."""
    numbers, target, contents = [], int(files * share), 0
    while target - len(numbers) >= 2:
        copies = min(rng.choices((2, 3, 4, 6), (70, 18, 8, 4))[0], target - len(numbers))
        if target - len(numbers) - copies == 1:
            copies += 1
        numbers += [contents] * copies
        contents += 1
    while len(numbers) < files:
        numbers.append(contents)
        contents += 1
    return numbers, contents


def shuffled_items(rng, folders, numbers):
    items = [(rng.choice(folders), index, number) for index, number in enumerate(numbers)]
    rng.shuffle(items)
    return items


def many_small(base, name, scale):
    """0 to 16 KiB: one in fifty is empty, the others are 2^u with u between 4 and 14. 30 % lie in groups."""
    rng = random.Random(f"{SEED}{name}")
    files, folder_count = int(200_000 * scale), max(1, int(5_000 * scale))
    folders = make_folders(base, folder_count, rng)
    numbers, contents = plan_duplicates(rng, files, .30)
    sizes = [0 if rng.random() < .02 else int(2 ** rng.uniform(4, 14)) for _ in range(contents)]
    expect = Expect()
    for folder, index, number in shuffled_items(rng, folders, numbers):
        write(os.path.join(folder, "f%06d.dat" % index), content(name, number, sizes[number]))
        expect.add(number, sizes[number])
    return expect, {"folders": folder_count + 1}


def photos(base, name, scale):
    """1 to 8 MiB, more small than large, a quarter in groups; about 1 % pairs of equal size with other bytes."""
    rng = random.Random(f"{SEED}{name}")
    folders = make_folders(base, 60, rng)
    numbers, contents = plan_duplicates(rng, int(3_000 * scale), .25)
    sizes = [int(MIB + (7 * MIB) * rng.random() ** 3.3) for _ in range(contents)]
    for number in range(0, contents, 100):
        sizes[number] = sizes[(number + 37) % contents]
    expect = Expect()
    for folder, index, number in shuffled_items(rng, folders, numbers):
        write(os.path.join(folder, "IMG_%05d.jpg" % index), content(name, number, sizes[number]))
        expect.add(number, sizes[number])
    return expect, {"folders": 61}


def same_size(base, name, scale):
    """All 64 KiB with one common body; half of the files differ from it in the first three bytes, half in the last three."""
    rng = random.Random(f"{SEED}{name}")
    size = 64 * KIB
    folders = make_folders(base, 200, rng)
    body = bytes(block()[:size])
    numbers, contents = plan_duplicates(rng, int(20_000 * scale), .02)
    order = list(range(contents))
    rng.shuffle(order)
    expect = Expect()
    for folder, index, number in shuffled_items(rng, folders, [order[number] for number in numbers]):
        mark = (number // 2 + 1).to_bytes(3, "little")
        write(os.path.join(folder, "s%05d.bin" % index), (mark, body[3:]) if number & 1 else (body[:-3], mark))
        expect.add(number, size)
    return expect, {"folders": 201}


def few_huge(base, name, scale):
    """Two pairs, one file that shares its first 1 MiB and its size with the first pair, one of another size."""
    os.makedirs(base, exist_ok=True)
    size = max(2 * MIB, int(1.2 * GIB * scale) & ~4095)
    expect = Expect()
    for index, (number, length) in enumerate([(0, size), (1, size), (0, size), (1, size), (2, size), (3, size - 8192)]):
        path = os.path.join(base, "huge%d.img" % index)
        if number == 2:
            write(path, list(content(name, 0, MIB)) + list(content(name, 2, length - MIB)))
        else:
            write(path, content(name, number, length))
        expect.add(number, length)
    return expect, {"folders": 1}


def deep(base, name, scale):
    """400 nested folders with 5 files each; short names, so that the paths stay below PATH_MAX."""
    os.makedirs(base, exist_ok=True)
    expect, folder = Expect(), os.open(base, os.O_RDONLY)
    levels = int(400 * scale) or 1
    for level in range(levels):
        for index in range(5):
            number = level * 5 + index
            size = 100 + number % 700
            file = os.open("f%d" % index, os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o644, dir_fd=folder)
            os.write(file, b"".join(content(name, number, size)))
            os.close(file)
            expect.add(number, size)
        os.mkdir("n%03d" % level, dir_fd=folder)
        below = os.open("n%03d" % level, os.O_RDONLY, dir_fd=folder)
        os.close(folder)
        folder = below
    os.close(folder)
    return expect, {"folders": levels + 1}


def wide(base, name, scale):
    """One folder with 100,000 entries: files of 1 to 512 bytes, every thousandth a folder."""
    rng = random.Random(f"{SEED}{name}")
    os.makedirs(base, exist_ok=True)
    expect, folders = Expect(), 1
    for number in range(int(100_000 * scale)):
        path = os.path.join(base, "e%06x" % (number * 7919 % 0xfffffd))
        if number % 1000 == 999:
            os.mkdir(path)
            folders += 1
            continue
        size = rng.randint(1, 512)
        write(path, content(name, number, size))
        expect.add(number, size)
    return expect, {"folders": folders}


def links(base, name, scale):
    """2,000 contents of 4 to 64 KiB: a third has hard links, a third a real copy, some both; symbolic links to files, to
    folders, to nowhere and to the folder above."""
    rng = random.Random(f"{SEED}{name}")
    folders = make_folders(base, 50, rng)
    expect = Expect()
    hard = symbolic = 0
    for number in range(int(2_000 * scale)):
        size = rng.randint(4 * KIB, 64 * KIB)
        path = os.path.join(rng.choice(folders), "o%05d" % number)
        write(path, content(name, number, size))
        expect.add(number, size)
        if number % 3 == 0:
            for index in range(rng.randint(1, 4)):
                os.link(path, os.path.join(rng.choice(folders), "h%05d_%d" % (number, index)))
                expect.add(number, size, False)
                hard += 1
        if number % 3 == 1 or number % 30 == 0:
            copy = os.path.join(rng.choice(folders), "c%05d" % number)
            write(copy, content(name, number, size))
            expect.add(number, size)
            if number % 30 == 0:
                os.link(copy, os.path.join(rng.choice(folders), "ch%05d" % number))
                expect.add(number, size, False)
                hard += 1
        if number % 10 == 0:
            link = os.path.join(rng.choice(folders), "s%05d" % number)
            os.symlink(os.path.relpath(path, os.path.dirname(link)) if number % 20 else "nowhere/%d" % number, link)
            symbolic += 1
    os.symlink("..", os.path.join(folders[0], "loop"))
    os.symlink(folders[1], os.path.join(folders[2], "abs_dir"))
    return expect, {"folders": 51, "hard_links": hard, "symlinks": symbolic + 2}


def million(base, name, scale):
    """1,000,000 entries: 10,000 folders with 99 files each. The files are holes of up to 1 MiB, which take an inode and no more."""
    rng = random.Random(f"{SEED}{name}")
    folders = make_folders(base, max(1, int(10_000 * scale)), rng)
    expect = Expect()
    for index in rng.sample(range(99 * len(folders)), 99 * len(folders)):
        size = rng.randrange(MIB)
        file = os.open(os.path.join(folders[index // 99], "f%06d.dat" % index), os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o644)
        os.ftruncate(file, size)
        os.close(file)
        expect.add(0, size)
    return expect, {"folders": len(folders) + 1}


MAKERS = {"many-small": many_small, "photos": photos, "same-size": same_size, "few-huge": few_huge, "deep": deep,
          "wide": wide, "links": links, "million": million}


def expectation(root, name):
    """The answer of a corpus that is complete, else None."""
    try:
        with open(os.path.join(root, name + ".expect.json"), encoding="utf-8") as file:
            return json.load(file)
    except (FileNotFoundError, json.JSONDecodeError):
        return None


def make(root, name, scale):
    """Makes a corpus that is not complete; its answer. FileExistsError when a folder of that name is no corpus."""
    base, answer, unfinished = (os.path.join(root, name + suffix) for suffix in ("", ".expect.json", ".unfinished"))
    os.makedirs(root, exist_ok=True)
    if os.path.lexists(base):
        if not os.path.exists(unfinished):
            raise FileExistsError(f"{base} was not made by this program; move it away or choose another place")
        shutil.rmtree(base)
    write(unfinished, ())
    expect, extra = MAKERS[name](base, name, scale)
    expected = {"corpus": name, "seed": SEED, "scale": scale, **expect.answer(), **extra}
    with open(answer + ".new", "w", encoding="utf-8") as file:
        json.dump(expected, file, indent=1)
    os.replace(answer + ".new", answer)
    os.unlink(unfinished)
    return expected


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("root")
    parser.add_argument("names", nargs="*", metavar="NAME", help=" ".join(MAKERS))
    parser.add_argument("--scale", type=float, default=1.0)
    options = parser.parse_args()
    unknown = set(options.names) - set(MAKERS)
    if unknown or options.scale <= 0:
        parser.error(f"no corpus is called {', '.join(unknown)}" if unknown else "the scale must be above 0")
    for name in options.names or MAKERS:
        there = expectation(options.root, name)
        if there is not None:
            if there.get("scale", options.scale) != options.scale:
                sys.exit(f"{options.root}/{name} is there with scale {there['scale']}; remove it first")
            print(f"{name}: there already", flush=True)
            continue
        start = time.monotonic()
        try:
            made = make(options.root, name, options.scale)
        except FileExistsError as error:
            sys.exit(str(error))
        print(f"{name}: {made['files']} files, {made['bytes']} bytes, {time.monotonic() - start:.1f} s", flush=True)


if __name__ == "__main__":
    main()
