#!/usr/bin/env python3
"""Looks for names that two sources of one library or test program gave in their unnamed namespaces, or that a header of the
sources gives in the open.

    check_groups.py [ROOT]          one line per name given twice, status 1 if there is any
    check_groups.py --self-test

The automatic build compiles eight sources of a library as one, and a new source shifts the groups: two helpers of one name then
meet that never met before. Functions that differ in their parameters may share a name, and an
alias may be given twice for one thing.
"""
import argparse
import contextlib
import io
import re
import sys
import tempfile
from collections import defaultdict
from pathlib import Path

from check_words import without_comments

TOKEN = re.compile(r"\bnamespace\b([^{;=]*)\{|[{};]")
TYPE = re.compile(r"^(?:class|struct|union|enum(?: class| struct)?)\s+(?:\[\[[^]]*\]\]\s*)*(\w+)")
ALIAS = re.compile(r"^(?:using|namespace)\s+(\w+)\s*=\s*(.*)$")
PROGRAMS = {"src/app", "src/preview", "src/gallery"}  # nobody includes their headers
TAKEN_IN = re.compile(r"^using\s+((?:\w+::)+(\w+))$")
IGNORED = re.compile(r"^(using\b|friend\b|static_assert\b|extern\b|template\s*<>|Q_|public\b|$)")


def bare(text, opening="<", closing=">"):
    """The text without what stands in pointed brackets, arrows and comparisons apart."""
    kept, depth = [], 0
    for each in re.sub(r"->|<=>|<<|>=|<=", " ", text):
        depth += each == opening
        if not depth:
            kept.append(each)
        depth -= each == closing and depth > 0
    return "".join(kept)


def types_of(parameters):
    """The parameters' types as a key: without names, defaults and spaces."""
    types, depth, each = [], 0, ""
    for letter in parameters + ",":
        depth += (letter in "<([{") - (letter in ">)]}")
        if letter == "," and depth == 0:
            plain = each.split("=")[0].strip()
            types.append(re.sub(r"\s+", "", re.sub(r"(?<=[\s&*>])\w+$", "", plain) if " " in plain or "&" in plain else plain))
            each = ""
        else:
            each += letter
    return tuple(filter(None, types))


def declared(head):
    """(name, key) of what a declaration's beginning declares: the key is the types of a function's parameters or what an alias stands
    for, which may be given twice, else None. None for what declares nothing."""
    head = re.sub(r"^#.*$", "", head, flags=re.M)
    head = re.sub(r"\[\[[^]]*\]\]", " ", head)
    head = re.sub(r"^\s*template\s*<[^()]*?>\s*(?=\w)", "", " ".join(head.split()))
    taken = TAKEN_IN.match(head)
    if taken:
        return taken.group(2), "= " + taken.group(1)
    if (IGNORED.match(head) and not ALIAS.match(head)) or not re.match(r"[A-Za-z_:]", head):  # the rest of an initial value
        return None
    found = ALIAS.match(head)
    if found:
        return found.group(1), "= " + found.group(2)
    found = TYPE.match(head)
    if found:
        return found.group(1), None
    plain = bare(head)
    found = re.match(r"^[^=(]*?(operator\s*\S+?|[~\w:]+)\s*\(", plain)
    if found and "=" not in plain[:found.end()].replace("operator=", ""):
        name, begin = found.group(1), head.find("(", 0 if "operator" in head else head.find(found.group(1)))
        depth, end = 0, begin
        for end in range(begin, len(head)):
            depth += (head[end] == "(") - (head[end] == ")")
            if depth == 0:
                break
        return (name, types_of(head[begin + 1:end])) if "::" not in name and " " in plain[:found.end()] else None
    found = re.match(r"^[^=\[]*?\b([A-Za-z_]\w*)\s*(?:\[[^]]*\]\s*)*(?:=.*)?$", plain)
    return (found.group(1), None) if found and " " in plain[:found.end(1)] else None


def names_in(text):
    """(namespace, is unnamed, line, name, key as above) of what is declared on the level of namespaces."""
    text = without_comments(text)
    stack, begin = [], 0
    for token in TOKEN.finditer(text):
        at_level = None not in stack
        if token.group(1) is not None:
            stack.append(token.group(1).strip())
        elif token.group() == "}":
            if stack:
                stack.pop()
        elif token.group() == "{" or at_level:
            if at_level:
                head = text[begin:token.start()]
                found = declared(head)
                if found:
                    line = text.count("\n", 0, begin + len(head) - len(head.lstrip())) + 1
                    yield "::".join(filter(None, stack)), "" in stack, line, *found
            if token.group() == "{":
                stack.append(None)
        if None not in stack:
            begin = token.end()


def clash(one, other):
    """Whether two declarations of one name can not stand side by side; functions by their parameters, equal aliases may."""
    aliases = [isinstance(each, str) for each in (one, other)]
    if None in (one, other):
        return True
    return one != other if all(aliases) else not any(aliases) and one == other


def check(root):
    """(number of sources, offences), an offence being (file, line, name, other file)."""
    sources, headers = ([path for each in ("src", "tests") for path in sorted((root / each).rglob(kind))] for kind in ("*.cpp", "*.h"))
    hidden, open_names, offences = defaultdict(list), defaultdict(list), []
    for path in sources + headers:
        name = path.relative_to(root).as_posix()
        top, library = name.split("/")[0], "/".join(name.split("/")[:2]).replace("tests/platform", "tests/engine")  # one program
        if library == "tests/fuzz" or name.endswith(("_probe.cpp", "_program.cpp")):  # each is a program
            continue
        for space, unnamed, line, declared_name, types in names_in(path.read_text(encoding="utf-8")):
            if unnamed and path.suffix == ".cpp":
                hidden[library, space, declared_name].append((name, line, types))
            elif path.suffix == ".h":
                shared = library not in PROGRAMS and (top == "src" or library == "tests/support")
                open_names[top if shared else library, space, declared_name].append((name, line, types))
    for key, places in hidden.items():
        tops = ("src",) if key[0].startswith("src/") else ("src", "tests")
        others = places + open_names[key] + [each for top in tops for each in open_names[top, *key[1:]]]
        for name, line, types in places:
            for other, _, other_types in others:
                if other != name and clash(types, other_types):
                    offences.append((name, line, key[2], other))
                    break
    return len(sources), sorted(offences)


def report(root):
    count, offences = check(root)
    for name, line, declared_name, other in offences:
        print(f"{name}:{line}: {declared_name} is a name of {other} too; one group of sources may hold both")
    print(f"{count} sources, {len(offences)} names given twice")
    return 1 if offences or not count else 0


SELF_TEST_TREE = {
    "src/engine/a.cpp": [("namespace orrinvale {", None), ("namespace {", None), ("constexpr int limit = 3;", "limit"),
                         ("constexpr std::size_t most = std::size_t{64} << 20U;", None),
                         ("// int free();", None), ("std::string told(const Entry& entry, int count = 2) {", "told"),
                         ("    struct Inner { int limit; };", None), ("    return f([] { int i; });", None), ("}", None),
                         ("bool isNear(int a);", None), ("struct Row { int a; };", "Row"),
                         ("[[nodiscard]] std::map<int, Entry> rowsOf(const std::vector<Entry>& all) { return {}; }", "rowsOf"),
                         ("const char* const words[] = {\"namespace {\"};", "words"), ("using Rows = int;", "Rows"),
                         ("using Clock = std::steady;", None), ("namespace fs = std::files;", None), ("template <typename T> void each(T&& one) {}", "each"),
                         ("}", None), ("int limitOf() { return 1; }", None), ("}", None)],
    "src/engine/b/b.cpp": [("namespace orrinvale {", None), ("namespace {", None), ("using Clock = std::steady;", None), ("namespace fs = std::files;", None),
                           ("const int limit{4};", "limit"),
                           ("constexpr std::size_t least = std::size_t{1} << 20U;", None),
                           ("std::string told(const Entry& other, int n) { return {}; }", "told"),
                           ("bool isNear(const Entry& a) { return a == a; }", None), ("class Row final : Base {};", "Row"),
                           ("auto rowsOf(const std::vector<Entry>& every) -> int {", "rowsOf"), ("}", None), ("int words = 1;", "words"),
                           ("using Rows = long;", "Rows"), ("using testing::Row;", "Row"),
                           ("template <typename T> void each(T&& other) {}", "each"),
                           ("int shown(int a) { return a; }", "shown"), ("}", None), ("}", None)],
    "src/engine/c.h": [("namespace orrinvale {", None), ("int shown(int value);", None), ("class Told {", None), ("    int limit();", None),
                       ("};", None), ("namespace {", None), ("const Files files;", None), ("}", None), ("}", None)],
    "src/engine/e.cpp": [("namespace orrinvale {", None), ("namespace {", None), ("const OtherFiles files;", "files"), ("}", None),
                         ("}", None)],
    "tests/fuzz/a_fuzz.cpp": [("namespace {", None), ("int check(int a) {", None), ("}", None), ("}", None)],
    "tests/fuzz/b_fuzz.cpp": [("namespace {", None), ("int check(int a) {", None), ("}", None), ("}", None)],
    "src/engine/d.cpp": [("namespace orrinvale::inner {", None), ("namespace {", None), ("constexpr int limit = 3;", None), ("}", None),
                         ("}", None)],
    "src/ui/a.cpp": [("namespace orrinvale {", None), ("namespace {", None), ("constexpr int limit = 3;", None),
                     ("class Told {", "Told"), ("};", None), ("}", None), ("}", None)],
    "tests/ui/c.h": [("namespace orrinvale {", None), ("int limitOf(int a);", None), ("}", None)],
    "tests/cli/c_test.cpp": [("namespace orrinvale {", None), ("namespace {", None), ("int limitOf(int a) { return a; }", None),
                             ("int shown(int value) { return value; }", "shown"), ("}", None), ("}", None)],
}


def self_test():
    with tempfile.TemporaryDirectory() as folder:
        root, expected = Path(folder), set()
        for name, lines in SELF_TEST_TREE.items():
            path = root / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text("\n".join(text for text, _ in lines), encoding="utf-8")
            expected |= {(name, number, kind) for number, (_, kind) in enumerate(lines, 1) if kind}
        offences = check(root)[1]
        with contextlib.redirect_stdout(io.StringIO()):
            fails = report(root) == 1
    found = {offence[:3] for offence in offences}
    for offence in sorted(expected - found):
        print("not reported:", *offence)
    for offence in sorted(found - expected):
        print("reported, though right:", *offence)
    good = found == expected and fails
    print(f"{len(offences)} names given twice, {'all' if good else 'NOT all'} as expected")
    return 0 if good else 1


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("root", nargs="?", type=Path, default=Path(__file__).resolve().parents[2])
    parser.add_argument("--self-test", action="store_true")
    options = parser.parse_args()
    return self_test() if options.self_test else report(options.root)


if __name__ == "__main__":
    sys.exit(main())
