"""The files for the desktop, as the desktop's own tools see them, and the user guide."""
import re
import struct
import tempfile
import xml.etree.ElementTree as xml
from html.parser import HTMLParser
from pathlib import Path

import support
from support import BUILD, ID, SOURCE, run, tool

DATA = BUILD / "data"


class DesktopFiles(support.Case):
    def test_menu_entry(self):
        self.quiet(tool("desktop-file-validate"), SOURCE / f"data/{ID}.desktop")

    def test_each_action_is_one_that_the_program_knows(self):
        entry = (SOURCE / f"data/{ID}.desktop").read_text(encoding="utf-8")
        ids = re.search(r"(?m)^Actions=(.*);$", entry).group(1).split(";")
        self.assertEqual(re.findall(r"(?m)^\[Desktop Action (.*)\]$", entry), ids)
        # Over the bus the id itself is the action's name, and else the word that is given behind the option.
        self.assertEqual(re.findall(r"(?m)^Exec=orrinvale --action (\S+)$", entry), ids)
        status, text = run(BUILD / "bin/orrinvale", "--help")
        self.assertEqual(status, 0, text)
        self.assertLessEqual(set(ids), set(support.actions(text)))

    def test_description_for_software_centres(self):
        status, text = run(tool("appstreamcli"), "validate", "--no-net", DATA / f"{ID}.metainfo.xml")
        self.assertEqual(status, 0, text)
        self.assertNotRegex(text, r"(?m)^[EWI]:")

    def test_every_text_is_there_in_each_language(self):
        entry = (SOURCE / f"data/{ID}.desktop").read_text(encoding="utf-8")
        plain = re.findall(r"(?m)^(GenericName|Comment|Keywords|Name)=(.*)$", entry)
        for language in ("de", "fr"):
            translated = re.findall(rf"(?m)^(?:GenericName|Comment|Keywords|Name)\[{language}\]=", entry)
            self.assertEqual(len(translated), len([1 for _, text in plain if text != "Orrinvale"]), language)
        root = xml.parse(DATA / f"{ID}.metainfo.xml").getroot()
        lang = "{http://www.w3.org/XML/1998/namespace}lang"
        for parent in root.iter():
            for name in ("p", "li", "summary"):
                texts = [child.get(lang, "en") for child in parent if child.tag == name]
                self.assertEqual(texts.count("en"), texts.count("de"), parent.tag)
                self.assertEqual(texts.count("en"), texts.count("fr"), parent.tag)

    def test_icons_have_the_size_of_their_folder(self):
        sizes = sorted(int(folder.name) for folder in (DATA / "icons").iterdir())
        self.assertEqual(sizes, [16, 22, 24, 32, 48, 64, 128, 256, 512])
        for size in sizes:
            head = (DATA / f"icons/{size}/{ID}.png").read_bytes()[:24]
            self.assertEqual(head[:8], b"\x89PNG\r\n\x1a\n")
            self.assertEqual(struct.unpack(">II", head[16:]), (size, size))


class Page(HTMLParser):
    """Collects what a page shows and points at, and whether its tags fit together."""

    def __init__(self, text):
        super().__init__()
        self.open, self.anchors, self.targets, self.words = [], [], [], []
        self.feed(text)

    def handle_starttag(self, tag, attrs):
        given = dict(attrs)
        if tag not in ("meta", "img", "br", "hr", "source", "input"):
            self.open.append(tag)
        self.anchors += [given["id"]] if "id" in given else []
        self.targets += [given[key] for key in ("href", "src", "srcset") if key in given]

    def handle_startendtag(self, tag, attrs):
        before = list(self.open)
        self.handle_starttag(tag, attrs)
        self.open = before

    def handle_endtag(self, tag):
        assert self.open and self.open.pop() == tag, f"</{tag}> at {self.getpos()}"

    def handle_data(self, data):
        self.words += data.split()


class Guide(support.Case):
    def page_of(self, markdown, folder):
        source = Path(folder) / "docs/user-guide.md"
        (source.parent / "screenshots").mkdir(parents=True, exist_ok=True)
        source.write_text(markdown, encoding="utf-8")
        (source.parent / "screenshots/a.png").write_bytes(b"picture")
        out = Path(folder) / "out"
        settings = {"CMARK": tool("cmark-gfm"), "SOURCE": source, "OUT": out, "ICON": SOURCE / f"data/icons/{ID}.svg",
                    "TEMPLATE": SOURCE / "data/guide/page.html.in"}
        status, text = run(tool("cmake"), *(f"-D{name}={value}" for name, value in settings.items()), "-P",
                           SOURCE / "cmake/UserGuide.cmake")
        return status, text, out

    def test_what_points_somewhere_finds_it(self):
        tool("cmark-gfm")
        folder = BUILD / "share/orrinvale/guide"
        page = Page((folder / "user-guide.html").read_text(encoding="utf-8"))
        self.assertEqual(page.open, [])
        self.assertEqual(len(page.anchors), len(set(page.anchors)))
        self.assertGreater(len(page.targets), 5)
        for target in page.targets:
            if target.startswith("#"):
                self.assertIn(target[1:], page.anchors)
            elif not target.startswith("https://"):
                self.assertTrue((folder / target).is_file(), target)
        shown = {f"screenshots/{path.name}" for path in folder.glob("screenshots/*")}
        self.assertEqual(shown, {target for target in page.targets if target.startswith("screenshots/")})

    def test_signs_tables_pictures_and_links_survive(self):
        markdown = ("# A & b; c [d]\n\n## Two; [x] `y` & z\n\nSee [the readme](../README.md#part-one), [this](#two), "
                    "[the `run` command](../README.md).\n\n| a | b |\n|---|---|\n| `x;y` | [z] @TITLE@ |\n\n"
                    "![shown](screenshots/a.png)\n")
        with tempfile.TemporaryDirectory() as folder:
            status, text, out = self.page_of(markdown, folder)
            self.assertEqual(status, 0, text)
            html = (out / "user-guide.html").read_text(encoding="utf-8")
            page = Page(html)
            self.assertTrue((out / "screenshots/a.png").is_file())
            self.assertNotEqual(self.page_of("![gone](screenshots/gone.png)", folder)[0], 0)
        self.assertIn("<title>A &amp; b; c [d] - Orrinvale</title>", html)
        self.assertIn('<h2 id="two-x-y--z">Two; [x] <code>y</code> &amp; z</h2>', html)
        self.assertIn("See the readme, <a href=\"#two\">this</a>, the <code>run</code> command.", html)
        self.assertIn("<td>[z] @TITLE@</td>", html)
        self.assertIn("<code>x;y</code>", html)
        self.assertEqual(page.open, [])


if __name__ == "__main__":
    support.main()
