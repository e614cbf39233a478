#!/usr/bin/env python3
"""Compares the file of translations with the sources: nothing lacks, nothing is unfinished or left over, and each
translation has the placeholders of its source.

    check_translations.py [ROOT]       one line per offence, status 1 if there is any, 77 where lupdate is not installed
    check_translations.py --update     adds what is new to the file, untranslated, and takes out what is gone
    check_translations.py --self-test
"""
import argparse
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as xml
from collections import Counter
from pathlib import Path

TRANSLATIONS = "resources/translations/orrinvale_de.ts"
SOURCES = ("src/ui", "src/app")
SKIPPED = 77
# An ampersand before a letter marks a key; %n and %1 to %9 stand for what is filled in.
MARK = re.compile(r"%L?[1-9n]|&(?=\w)")


def find_lupdate():
    return shutil.which("lupdate", path="/usr/lib/qt6/bin") or shutil.which("lupdate")


def messages(path):
    """Of every message, by context, source and comment: its element."""
    return {(context.findtext("name"), message.findtext("source"), message.findtext("comment")): message
            for context in xml.parse(path).getroot().iter("context") for message in context.iter("message")}


def forms(message):
    translation = message.find("translation")
    if message.get("numerus") == "yes":
        return [form.text or "" for form in translation.iter("numerusform")]
    return [translation.text or ""]


def update(lupdate, root, file):
    """Brings the file up to date with the sources."""
    subprocess.run([lupdate, "-silent", "-no-obsolete", "-locations", "none", "-extensions", "cpp,h", "-I", "src",
                    "-source-language", "en", "-target-language", "de_DE", *SOURCES, "-ts", file],
                   cwd=root, check=True, stdout=subprocess.DEVNULL)


def text_offences(key, message):
    source = key[1]
    counted = message.get("numerus") == "yes"
    if counted and len(forms(message)) != 2:
        yield key, "has not two forms"
    for form in forms(message):
        if not form.strip():
            yield key, "is not translated"
            return
        if Counter(MARK.findall(form)) != Counter(MARK.findall(source)):
            yield key, f"has other placeholders: {form}"
        if re.search(r"^\s|\s$", form) and not re.search(r"^\s|\s$", source):
            yield key, f"has a blank at its edge: {form!r}"


def offences(root, lupdate):
    file = root / TRANSLATIONS
    have = messages(file)
    for key, message in have.items():
        state = message.find("translation").get("type")
        if state:
            yield key, f"is {state}"
        yield from text_offences(key, message)
    with tempfile.TemporaryDirectory() as folder:
        fresh = Path(folder) / "fresh_de.ts"
        update(lupdate, root, fresh)
        wanted = messages(fresh)
    for key in wanted.keys() - have.keys():
        yield key, "lacks"
    for key in have.keys() - wanted.keys():
        yield key, "is nowhere in the sources"
    for key in wanted.keys() & have.keys():
        if wanted[key].get("numerus") != have[key].get("numerus"):
            yield key, "is counted in one place only"


def report(root, lupdate):
    found = sorted(offences(root, lupdate), key=str)
    for (context, source, _), fault in found:
        print(f"{context}: {source!r} {fault}")
    print(f"{len(messages(root / TRANSLATIONS))} texts, {len(found)} offences")
    return 1 if found else 0


def self_test(lupdate):
    texts = {"good": "gut", "%1 of %2": "%2 von %1", "&Keep": "&Behalten", "empty": "", "unfinished": ("offen",),
             "old": "alt", "one %1": "eins", "two %1": "%1 %1", "&Key": "Taste", "edge": "Rand "}
    wrong = {"empty", "unfinished", "old", "new", "one %1", "two %1", "&Key", "edge"}
    with tempfile.TemporaryDirectory() as folder:
        root = Path(folder)
        for source in SOURCES:
            (root / source).mkdir(parents=True)
        calls = "".join(f'    QCoreApplication::translate("C", "{text}");\n' for text in [*texts, "new"] if text != "old")
        (root / "src/ui/a.cpp").write_text(f"void f() {{\n{calls}}}\n", encoding="utf-8")
        (root / TRANSLATIONS).parent.mkdir(parents=True)
        context = xml.Element("context")
        xml.SubElement(context, "name").text = "C"
        for source, translation in texts.items():
            message = xml.SubElement(context, "message")
            xml.SubElement(message, "source").text = source
            made = xml.SubElement(message, "translation")
            if isinstance(translation, tuple):
                made.set("type", "unfinished")
            made.text = translation if isinstance(translation, str) else translation[0]
        top = xml.Element("TS", version="2.1")
        top.append(context)
        xml.ElementTree(top).write(root / TRANSLATIONS, encoding="utf-8")
        found = {source for (_, source, _), _ in offences(root, lupdate)}
    print("found:", sorted(found))
    return 0 if found == wrong else 1


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("root", nargs="?", type=Path, default=Path(__file__).resolve().parents[2])
    parser.add_argument("--self-test", action="store_true")
    parser.add_argument("--update", action="store_true")
    options = parser.parse_args()
    lupdate = find_lupdate()
    if not lupdate:
        print("lupdate is not installed")
        return SKIPPED
    if options.self_test:
        return self_test(lupdate)
    if options.update:
        update(lupdate, options.root, options.root / TRANSLATIONS)
        return 0
    return report(options.root, lupdate)


if __name__ == "__main__":
    sys.exit(main())
