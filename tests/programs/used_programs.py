"""The programs of the restart test: how each is set up, used, ended, and what shows that it still has what it had."""
import contextlib
import functools
import hashlib
import http.server
import re
import shutil
import sqlite3
import tempfile
import threading
import time
from pathlib import Path

from desk import comes_true

# A first visit makes up a name and leaves it in three places; a browser that lost one of them shows another title.
PAGE = """<!doctype html><title>waiting</title><body><script src="large.js"></script><script>
const kept = () => [localStorage.name, (document.cookie.match(/name=(\\w+)/) || [])[1]].join("+");
if (!localStorage.name && !document.cookie) {
  localStorage.name = document.cookie = "name=" + Math.random().toString(36).slice(2) + ";max-age=99999999";
  localStorage.name = document.cookie.slice(5);
}
indexedDB.open("notes", 1).onupgradeneeded = e => e.target.result.createObjectStore("s").add(localStorage.name, "name");
const ask = indexedDB.open("notes", 1);
ask.onsuccess = () => ask.result.transaction("s").objectStore("s").get("name").onsuccess =
  e => { document.title = "Diary of " + kept() + "+" + e.target.result; document.body.append(document.title); };
</script>"""


def hash_of(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()


def rows_of(database, query):
    """Read from a copy, so that the database stays as the program left it."""
    if not database.exists():
        return f"no {database.name}"
    with tempfile.TemporaryDirectory() as place:
        for each in database.parent.glob(database.name + "*"):
            shutil.copyfile(each, Path(place) / each.name)
        with contextlib.closing(sqlite3.connect(Path(place) / database.name)) as copy:
            return copy.execute(query).fetchall()


class Program:
    """One program. use() is its first run; open() and close() are a later one."""
    name = ""
    command = ()
    title = ""  # a pattern for its main window
    offered = kept = None  # its folder in the caches

    def __init__(self, desk):
        self.desk = desk
        self.process = None

    def prepare(self):
        """Files that were there before its first start."""

    def open(self):
        self.process = self.desk.start(*self.command)
        self.desk.window(self.title)

    def use(self):
        self.open()
        time.sleep(3)
        self.close()

    def close(self):
        """As a person does, by Ctrl+Q."""
        def ask():
            with contextlib.suppress(RuntimeError):  # it may have heard the first time, late
                self.desk.keys(self.title, "ctrl+q")
        self.desk.insist(ask, lambda: self.process.poll() is not None, f"{self.name} did not end")
        self.desk.end(self.process)

    def screen(self):
        """What tells the state after a start, as text."""
        return self.desk.titles()

    def belongings(self):
        """What the person has in it, by name; looked at while it does not run."""
        return {}


class Firefox(Program):
    name = "browser (Firefox)"
    command = ("firefox-esr", "-P", "person")
    title = "Mozilla Firefox"
    offered = ".cache/mozilla"
    preferences = {
        "browser.startup.page": 3, "browser.startup.homepage": "about:blank", "browser.sessionstore.interval": 1000,
        "browser.shell.checkDefaultBrowser": False, "browser.aboutwelcome.enabled": False, "browser.warnOnQuit": False,
        "browser.warnOnQuitShortcut": False, "browser.startup.homepage_override.mstone": "ignore",
        "datareporting.policy.dataSubmissionEnabled": False, "termsofuse.bypassNotification": True,
        "network.captive-portal-service.enabled": False, "network.connectivity-service.enabled": False,
        "app.normandy.enabled": False, "extensions.getAddons.cache.enabled": False}

    def prepare(self):
        self.server = serve()
        self.desk.write(".mozilla/firefox/profiles.ini",
                        "[Profile0]\nName=person\nIsRelative=1\nPath=p.person\nDefault=1\n[General]\nStartWithLastProfile=1\n"
                        "Version=2\n")
        self.desk.write(".mozilla/firefox/p.person/user.js", preferences_of(self.preferences))

    def use(self):
        self.process = self.desk.start(*self.command, f"http://127.0.0.1:{self.server.server_port}/diary")
        self.desk.window("Diary of ")
        time.sleep(4)  # its session is written every second, what it looked up in the end
        self.desk.keys(self.title, "ctrl+d")
        time.sleep(1)
        self.desk.keys(self.title, "Return")
        time.sleep(2)
        self.close()

    def open(self):
        self.process = self.desk.start(*self.command)
        self.desk.window("Diary of ")

    def belongings(self):
        profile = self.desk.home / ".mozilla/firefox/p.person"
        return {"visited": rows_of(profile / "places.sqlite", "select url from moz_places where visit_count > 0 order by url"),
                "bookmarks": rows_of(profile / "places.sqlite", "select title from moz_bookmarks order by id"),
                "cookies": rows_of(profile / "cookies.sqlite", "select name, value from moz_cookies order by name")}


class Thunderbird(Program):
    name = "mail program (Thunderbird)"
    command = ("thunderbird", "-P", "person")
    title = "Mozilla Thunderbird"
    offered = ".cache/thunderbird"
    folder = ".thunderbird/p.person"
    preferences = {
        "mail.accountmanager.accounts": "account1", "mail.accountmanager.localfoldersserver": "server1",
        "mail.accountmanager.defaultaccount": "account1", "mail.account.account1.server": "server1",
        "mail.account.account1.identities": "id1", "mail.server.server1.type": "none",
        "mail.server.server1.hostname": "Local Folders", "mail.server.server1.name": "Local Folders",
        "mail.server.server1.userName": "nobody", "mail.server.server1.directory-rel": "[ProfD]Mail/Local Folders",
        "mail.identity.id1.fullName": "Person", "mail.identity.id1.useremail": "person@example.org",
        "mail.identity.id1.draft_folder": "mailbox://nobody@Local%20Folders/Drafts",
        "mail.provider.suppress_dialog_on_startup": True, "mail.spotlight.firstRunDone": True, "mail.rights.version": 1,
        "mailnews.start_page.enabled": False, "mail.shell.checkDefaultClient": False, "mail.winsearch.firstRunDone": True,
        "app.donation.eoy.version.viewed": 999, "datareporting.policy.dataSubmissionEnabled": False,
        "browser.warnOnQuit": False, "mail.warn_on_quit": False, "mail.compose.warn_public_recipients.aggressive": False,
        "mailnews.start_page_override.mstone": "ignore", "termsofuse.bypassNotification": True}

    def prepare(self):
        self.desk.write(".thunderbird/profiles.ini",
                        "[Profile0]\nName=person\nIsRelative=1\nPath=p.person\nDefault=1\n[General]\nStartWithLastProfile=1\n"
                        "Version=2\n")
        self.desk.write(f"{self.folder}/user.js", preferences_of(self.preferences))
        self.desk.write(f"{self.folder}/Mail/Local Folders/Inbox", mail("Lunch", "At noon?") + mail("Photos", "They are here."))
        self.desk.write(f"{self.folder}/Mail/Local Folders/Unsent Messages", mail("Waits", "To be sent later."))

    def use(self):
        self.open()
        time.sleep(3)
        self.desk.keys(self.title, "ctrl+n")
        self.desk.type("Write: ", "ada@example.org")
        time.sleep(1)
        self.desk.keys("Write: ", "alt+s")
        time.sleep(1)
        self.desk.type("Write: ", "Draft of mine")
        drafts = self.desk.home / self.folder / "Mail/Local Folders/Drafts"
        self.desk.insist(lambda: self.desk.keys("Write: ", "ctrl+s"),
                         lambda: drafts.exists() and b"Draft of mine" in drafts.read_bytes(), "the draft was not written")
        self.desk.keys("Write: ", "ctrl+w")
        time.sleep(2)
        self.close()

    def belongings(self):
        folder = self.desk.home / self.folder / "Mail/Local Folders"
        found = {name: re.findall(r"(?m)^Subject: (.*)$", (folder / name).read_text(errors="replace"))
                 for name in ("Inbox", "Unsent Messages", "Drafts") if (folder / name).exists()}
        preferences = (self.desk.home / self.folder / "prefs.js").read_text()
        return found | {"accounts": sorted(re.findall(r'"mail\.(?:account|server|identity)\.[^"]*name", .*', preferences))}


class LibreOffice(Program):
    name = "office suite (LibreOffice)"
    title = "letter.odt"
    profile = ".config/libreoffice/4/user"

    def __init__(self, desk):
        super().__init__(desk)
        self.command = ("soffice", "--writer", "--nologo", desk.home / "Documents/letter.odt")

    def prepare(self):
        setting = '<item oor:path="/org.openoffice.Office.Common/Misc"><prop oor:name="{}"><value>false</value></prop></item>'
        self.desk.write(f"{self.profile}/registrymodifications.xcu",
                        '<?xml version="1.0"?><oor:items xmlns:oor="http://openoffice.org/2001/registry">'
                        + "".join(setting.format(name) for name in ("ShowTipOfTheDay", "FirstRun")) + "</oor:items>")
        text = self.desk.write("Documents/letter.txt", "Dear Ada,\n")
        self.desk.must("soffice", "--headless", "--convert-to", "odt", "--outdir", text.parent, text)

    def use(self):
        self.open()
        time.sleep(3)
        former = hash_of(self.command[-1])
        self.desk.type(self.title, "I write to you. ")
        self.desk.insist(lambda: self.desk.keys(self.title, "ctrl+s"), lambda: hash_of(self.command[-1]) != former,
                         "the letter was not written")
        time.sleep(1)
        self.close()

    def belongings(self):
        settings = (self.desk.home / self.profile / "registrymodifications.xcu").read_text()
        return {"letter": hash_of(self.command[-1]), "recent": re.findall(r'node oor:name="(file://[^"]*)"', settings)}


class KeePassXC(Program):
    name = "password manager (KeePassXC)"
    command = ("keepassxc",)
    title = "KeePassXC"
    kept = ".cache/keepassxc"

    def prepare(self):
        self.safe = self.desk.home / "Documents/Passwords.kdbx"
        self.desk.write(".config/keepassxc/keepassxc.ini", "[General]\nUpdateCheckMessageShown=true\nConfigVersion=2\n")
        self.desk.must("keepassxc-cli", "db-create", "-p", "-t", "100", self.safe, input="horse\nhorse\n")

    def use(self):
        self.process = self.desk.start(*self.command, self.safe)
        self.desk.window(r"Passwords.*KeePassXC")
        time.sleep(2)
        self.desk.type(self.title, "horse")
        self.desk.insist(lambda: self.desk.keys(self.title, "Return"),
                         lambda: not any("[Locked]" in each for each in self.desk.titles()), "the safe did not open")
        time.sleep(1)
        self.close()

    def belongings(self):
        return {"safe": hash_of(self.safe)}


class Rclone(Program):
    """Its mount holds uploads back for an hour; what was written lies in its cache alone until then."""
    name = "sync tool (rclone)"
    kept = ".cache/rclone"

    def prepare(self):
        self.mount, self.cloud = self.desk.home / "Mounted", self.desk.home / "Cloud"
        self.desk.write("Cloud/old.txt", "uploaded long ago")
        self.desk.write("Mounted/.keep", "")
        (self.mount / ".keep").unlink()
        self.desk.write(".config/rclone/rclone.conf", f"[cloud]\ntype = alias\nremote = {self.cloud}\n")

    def open(self, hold="1h"):
        self.process = self.desk.start("rclone", "mount", "cloud:", self.mount, "--vfs-cache-mode", "writes",
                                       "--vfs-write-back", hold)
        if not comes_true(lambda: self.desk.run("mountpoint", "-q", self.mount)[0] == 0, 20):
            raise RuntimeError("rclone has not mounted anything")

    def use(self):
        self.open()
        self.desk.must("sh", "-c", f'echo "written on the train" > "{self.mount}/report.txt"')
        time.sleep(1)
        self.close()
        if (self.cloud / "report.txt").exists():
            raise RuntimeError("the upload was not held back")

    def close(self):
        self.desk.must("fusermount3", "-u", self.mount)
        self.process.wait(40)
        self.desk.end(self.process)

    def screen(self):
        return [self.desk.run("cat", self.mount / name)[1] for name in ("old.txt", "report.txt")]

    def belongings(self):
        return {"cloud": sorted(each.name for each in self.cloud.iterdir())}

    def upload(self):
        """Lets the held upload go; what has arrived."""
        self.open("1s")
        report = self.cloud / "report.txt"
        comes_true(report.exists, 20)
        time.sleep(1)
        self.close()
        return report.read_text() if report.exists() else None


ALL = (Firefox, Thunderbird, LibreOffice, KeePassXC, Rclone)


def preferences_of(values):
    words = {True: "true", False: "false"}
    return "".join(f'user_pref("{name}", {words[value] if isinstance(value, bool) else repr(value).replace(chr(39), chr(34))});\n'
                   for name, value in values.items())


def mail(subject, text):
    return (f"From - Mon Nov 16 10:00:00 2026\nX-Mozilla-Status: 0001\nX-Mozilla-Status2: 00000000\nFrom: ada@example.org\n"
            f"To: person@example.org\nSubject: {subject}\nDate: Mon, 16 Nov 2026 10:00:00 +0000\n"
            f"Message-ID: <{subject.lower()}@example.org>\n\n{text}\n\n")


class Page(http.server.BaseHTTPRequestHandler):
    def do_GET(self):  # the server's name for it
        is_page = self.path == "/diary"
        body = PAGE.encode() if is_page else b"//" + b"x" * 2_000_000
        self.send_response(200)
        self.send_header("Content-Type", "text/html; charset=utf-8" if is_page else "text/javascript")
        self.send_header("Content-Length", str(len(body)))
        self.send_header("Cache-Control", "no-store" if is_page else "max-age=9999999")
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        pass


@functools.cache
def serve():
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Page)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return server
