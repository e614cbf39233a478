"""Manual pages and completions: in good form, and nothing that the program takes is missing in them."""
import os
import re
import subprocess
import tempfile
from pathlib import Path

import support
from support import BUILD, run, tool
from typed_line import furnish, typed

CLI = BUILD / "bin/orrinvale-cli"
DATA = BUILD / "data"


def names_under(title, text):
    """The first words of the lines in one block of the program's help."""
    block = re.search(rf"(?m)^{title}:\n((?:  .*\n)+)", text)
    return re.findall(r"(?m)^  (\S+)", block.group(1)) if block else []


def commands():
    """Each command that the program's own parser knows, with its options and arguments."""
    status, text = run(CLI, "--help")
    assert status == 0, text
    found = {}
    for name in names_under("Subcommands", text):
        text = run(CLI, name, "--help")[1]
        options = [each for names in names_under("Options", text) for each in names.split(",")]
        found[name] = (options, names_under("Positionals", text))
    assert len(found) > 3 and all("--json" in options for options, _ in found.values()), found
    return found


def shown(page):
    status, text = run(tool("man"), "-l", "-E", "ascii", page,
                       env={**os.environ, "MANWIDTH": "1000", "LC_ALL": "C.UTF-8"})
    assert status == 0, text
    return re.sub(".\b", "", text)


class ManualPages(support.Case):
    def test_form(self):
        for page in ("orrinvale.1", "orrinvale-cli.1"):
            self.formatted_without_warnings(DATA / page)
            self.quiet(tool("mandoc"), "-T", "lint", DATA / page)

    def formatted_without_warnings(self, page):
        done = subprocess.run([tool("man"), "--warnings", "-l", page], check=False, capture_output=True, text=True,
                              env={**os.environ, "LC_ALL": "C.UTF-8"})
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def test_every_command_and_option_is_told(self):
        text = shown(DATA / "orrinvale-cli.1")
        sections = dict(re.findall(r"(?ms)^   (\S+)\n(.*?)(?=^ {0,3}\S)", text))
        common = re.search(r"(?ms)^OPTIONS\n(.*?)^\S", text).group(1)
        for name, (options, arguments) in commands().items():
            self.assertIn(name, sections)
            for word in options + arguments:
                self.assertRegex(sections[name] + common, rf"(?m)^ +(-\w, )?{re.escape(word)}(\W|$)", name)

    def test_every_option_and_action_of_the_window_is_told(self):
        status, text = run(BUILD / "bin/orrinvale", "--help")
        self.assertEqual(status, 0, text)
        options = re.search(r"(?ms)^OPTIONS\n(.*?)^\S", shown(DATA / "orrinvale.1")).group(1)
        names = re.findall(r"(?m)^  (--[a-z-]+)", text)
        self.assertGreater(len(names), 3)
        self.assertEqual(len(support.actions(text)), 12)
        for word in names + support.actions(text):
            self.assertRegex(options, rf"(?m)^ +([a-z-]+, )*{word}(,|\s|$)")

    def test_texts_of_any_form_reach_the_reader(self):
        text = shown(DATA / "orrinvale-cli.1")
        self.assertIn("Search the system's folders in / too.", text)
        self.assertIn("orrinvale-cli duplicates ~/Pictures", text)


class Completions(support.Case):
    FILES = {"bash": DATA / "orrinvale-cli.bash", "zsh": DATA / "_orrinvale-cli", "fish": DATA / "orrinvale-cli.fish"}

    def test_every_command_and_option_is_offered(self):
        texts = {shell: path.read_text(encoding="utf-8") for shell, path in self.FILES.items()}
        for name, (options, _) in commands().items():
            block = {"bash": re.search(rf"(?m)^ +{name}\) options='(.*?)'", texts["bash"]).group(1),
                     "zsh": re.search(rf"(?ms)^ +{name}\)\n(.*?);;", texts["zsh"]).group(1),
                     "fish": "\n".join(re.findall(rf"(?m)^.*__fish_seen_subcommand_from {name}'.*$", texts["fish"]))}
            for option in options:
                self.assertIn(option, block["bash"].split(), name)
                self.assertRegex(block["zsh"], rf"['{{,]{re.escape(option)}['}},]", name)
                dash = "-l " if option.startswith("--") else "-s "
                self.assertRegex(block["fish"], rf"{dash}{re.escape(option.lstrip('-'))} ", name)

    # A line with its tabs, and the words that the program is started with. A folder ends in a slash where the shell likes.
    LINES = [
        ("orrinvale-cli dup\t--hid\tmy\t", ["duplicates", "--hidden", "my folder"]),
        ("orrinvale-cli duplicates --lim\t5 sol\t", ["duplicates", "--limit", "5", "sol"]),  # files are no folders
        ("orrinvale-cli large --depth my\t", ["large", "--depth", "my"]),  # a number is wanted there
        ("orrinvale-cli size -0 sol\tmy\\ d\t", ["size", "-0", "solitary.txt", "my data.txt"]),
        ("orrinvale-cli vol\t--print\t", ["volumes", "--print0"]),
        ("orrinvale-cli eject /media/s\t", ["eject", "/media/stick one"]),
    ]

    def check_lines(self, shell):
        for line, expected in self.LINES:
            with self.subTest(line=line):
                words = typed(shell, tool(shell), self.FILES[shell], line)
                self.assertEqual([word.rstrip("/") for word in words], expected)

    def test_bash(self):
        self.check_lines("bash")

    def test_zsh(self):
        self.check_lines("zsh")

    def test_fish(self):
        cases = {"orrinvale-cli dup": ["duplicates"], "orrinvale-cli size --js": ["--json"],
                 "orrinvale-cli large my": ["my folder/"], "orrinvale-cli large --top ": [],
                 "orrinvale-cli eject /media/s": ["/media/stick one"]}
        with tempfile.TemporaryDirectory() as place:
            home, programs = furnish(Path(place))
            environment = {**os.environ, "HOME": str(home), "PATH": f"{programs}:/usr/bin:/bin"}
            for line, expected in cases.items():
                status, text = run(tool("fish"), "-c", f"source {self.FILES['fish']}; complete -C '{line}'", cwd=home,
                                   env=environment)
                self.assertEqual(status, 0, text)
                self.assertEqual([offer.split("\t")[0] for offer in text.splitlines()], expected, line)


if __name__ == "__main__":
    support.main()
