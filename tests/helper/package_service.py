"""A service for packages, those of dpkg's file: what it would remove and what it does stand in a file of JSON that is read anew for each
transaction. {"simulated": [[INFO, ID], ...], "error": null | [NUMBER, WORDS], "real": "works" | "more" | "lies" | "empties" | "waits" | "holds" | "late",
"status": PATH, "calls": PATH}; an error is the end of a simulation.
"more" removes all packages but the first, "waits" goes on until it is cancelled, "holds" can not be cancelled and ends after a second, "late" says that it can be and works all the same, ten seconds later, "empties" leaves dpkg's file without a word."""
import json
import re
import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

NAME = "org.freedesktop.PackageKit"
SUCCESS, FAILED, CANCELLED, SIMULATE, INSTALLED = 1, 2, 3, 4, 1


class CannotCancel(dbus.DBusException):
    _dbus_error_name = f"{NAME}.Transaction.CannotCancel"


class Transaction(dbus.service.Object):
    def __init__(self, bus, path):
        super().__init__(bus, path)
        with open(sys.argv[1], encoding="utf-8") as file:
            self.scene = json.load(file)

    def note(self, line):
        with open(self.scene["calls"], "a", encoding="utf-8") as file:
            file.write(line + "\n")

    @dbus.service.method(f"{NAME}.Transaction", in_signature="as")
    def SetHints(self, _hints):
        pass

    @dbus.service.method(f"{NAME}.Transaction", in_signature="tas")
    def Resolve(self, _filter, names):
        with open(self.scene["status"], encoding="utf-8") as file:
            known = re.findall(r"(?m)^Package: (.*)$", file.read())
        GLib.idle_add(self.tell, [[INSTALLED, f"{each};1.0;amd64;installed"] for each in known if each in names])

    @dbus.service.method(f"{NAME}.Transaction", in_signature="tasbb")
    def RemovePackages(self, flags, ids, dependents, unused):
        if flags & SIMULATE:
            GLib.idle_add(self.tell, self.scene["simulated"], self.scene["error"])
            return
        self.note(f"remove {' '.join(ids)} {int(dependents)}{int(unused)}")
        if self.scene["real"] == "busy":
            GLib.idle_add(self.tell, [], [26, "another one has the lock"])
            return
        if self.scene["real"] == "holds":
            GLib.timeout_add(1000, self.act)
        elif self.scene["real"] not in ("waits", "late"):
            GLib.idle_add(self.act)

    @dbus.service.method(f"{NAME}.Transaction")
    def Cancel(self):
        self.note("cancel")
        if self.scene["real"] == "holds":
            raise CannotCancel("not now")
        if self.scene["real"] == "late":
            GLib.timeout_add(11000, self.act)
        else:
            GLib.idle_add(self.end, CANCELLED)

    def act(self):
        if self.scene["real"] != "lies":
            with open(self.scene["status"], encoding="utf-8") as file:
                stanzas = file.read().split("\n\n")
            left = [each for each in stanzas if "Package: tool\n" not in each + "\n"]
            left = left[:{"empties": 0, "more": 1}.get(self.scene["real"], len(left))]
            with open(self.scene["status"], "w", encoding="utf-8") as file:
                file.write("\n\n".join(left))
        self.end(SUCCESS)

    def tell(self, packages, error=None):
        for info, package in packages:
            self.Package(info, package, "")
        if error:
            self.ErrorCode(*error)
        self.end(FAILED if error else SUCCESS)

    def end(self, how):
        self.Finished(how, 0)

    @dbus.service.signal(f"{NAME}.Transaction", signature="uss")
    def Package(self, info, package, summary):
        pass

    @dbus.service.signal(f"{NAME}.Transaction", signature="us")
    def ErrorCode(self, number, words):
        pass

    @dbus.service.signal(f"{NAME}.Transaction", signature="uu")
    def Finished(self, how, runtime):
        pass


class Service(dbus.service.Object):
    made = 0

    @dbus.service.method(NAME, out_signature="o")
    def CreateTransaction(self):
        self.made += 1
        path = f"/{self.made}"
        Transaction(self.connection, path)
        return dbus.ObjectPath(path)


def main():
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.SystemBus()
    service = Service(bus, "/org/freedesktop/PackageKit")
    name = dbus.service.BusName(NAME, bus)
    GLib.MainLoop().run()
    return service, name


if __name__ == "__main__":
    main()
