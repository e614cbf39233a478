"""A panel's tray on the session bus: the watcher of StatusNotifier items and one host, without a screen. It is told what to do line by line
and answers each line with lines of its own, the last of which is a single dot:

  watcher on|off    takes and gives back the watcher's name
  host on|off       whether a host is registered
  items             the items that are registered and still there
  tooltip, pictures of the first item; "pictures" are the sizes
  menu              its exported menu as a panel would show it: "id|label|state", a line an entry
  open              what a panel sends when it shows the menu
  click ID          what a panel sends when an entry is clicked
  activate          a left click on the item
  layouts N         asks for the menu N times
  start ACTION      what the program's desktop entry asks the running one for
"""
import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

WATCHER = "org.kde.StatusNotifierWatcher"
ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"
PROPERTIES = "org.freedesktop.DBus.Properties"


class Watcher(dbus.service.Object):
    def __init__(self, bus):
        super().__init__(bus, "/StatusNotifierWatcher")
        self.bus = bus
        self.has_host = False
        self.items = []

    @dbus.service.method("org.freedesktop.DBus.Introspectable", out_signature="s", path_keyword="path", connection_keyword="connection")
    def Introspect(self, path, connection):
        """The library tells of methods and signals alone, and the toolkit asks for no property that is not told of."""
        told = super().Introspect(path, connection)
        return told.replace(f'<interface name="{WATCHER}">', f'<interface name="{WATCHER}">'
                            '<property name="IsStatusNotifierHostRegistered" type="b" access="read"/>')

    @dbus.service.method(WATCHER, in_signature="s", sender_keyword="sender")
    def RegisterStatusNotifierItem(self, service, sender=None):
        name = sender if service.startswith("/") else service
        self.items.append((name, service if service.startswith("/") else "/StatusNotifierItem"))
        self.StatusNotifierItemRegistered(service)

    @dbus.service.method(WATCHER, in_signature="s")
    def RegisterStatusNotifierHost(self, _service):
        self.set_host(True)

    @dbus.service.signal(WATCHER, signature="s")
    def StatusNotifierItemRegistered(self, service):
        pass

    @dbus.service.signal(WATCHER)
    def StatusNotifierHostRegistered(self):
        pass

    @dbus.service.signal(WATCHER)
    def StatusNotifierHostUnregistered(self):
        pass

    @dbus.service.method(PROPERTIES, in_signature="ss", out_signature="v")
    def Get(self, _interface, name):
        return self.GetAll(_interface)[name]

    @dbus.service.method(PROPERTIES, in_signature="s", out_signature="a{sv}")
    def GetAll(self, _interface):
        return {
            "IsStatusNotifierHostRegistered": dbus.Boolean(self.has_host),
            "ProtocolVersion": dbus.Int32(0),
            "RegisteredStatusNotifierItems": dbus.Array([name for name, _ in self.living()], signature="s"),
        }

    def living(self):
        return [item for item in self.items if self.bus.name_has_owner(item[0])]

    def set_host(self, has_host):
        self.has_host = has_host
        (self.StatusNotifierHostRegistered if has_host else self.StatusNotifierHostUnregistered)()


def shown(label):
    """The label without its key's mark, as a panel draws it."""
    text, at = "", 0
    while at < len(label):
        if label[at] == "_":
            at += 1
            if at >= len(label):
                break
        text += label[at]
        at += 1
    return text.replace("\u2060", "")


class Panel:
    def __init__(self):
        self.bus = dbus.SessionBus()
        self.watcher = Watcher(self.bus)

    def item(self, interface):
        name, path = self.watcher.living()[0]
        return dbus.Interface(self.bus.get_object(name, path, introspect=False), interface)

    def property(self, name):
        return self.item(PROPERTIES).Get(ITEM, name, timeout=5)

    def exported(self):
        path = self.property("Menu")
        name, _ = self.watcher.living()[0]
        return dbus.Interface(self.bus.get_object(name, path, introspect=False), MENU)

    def menu(self):
        menu = self.exported()
        menu.AboutToShow(0, timeout=5)
        _, (_, _, entries) = menu.GetLayout(0, -1, dbus.Array([], signature="s"), timeout=5)
        for number, values, children in entries:
            assert not children, "a flat menu"
            state = "" if values.get("enabled", True) else "grey"
            yield f"{number}|{'---' if values.get('type') == 'separator' else shown(values.get('label', ''))}|{state}"

    def answer(self, words):
        command = words[0]
        if command == "watcher":
            if words[1] == "on":
                self.bus.request_name(WATCHER)
            else:
                self.bus.release_name(WATCHER)
                self.watcher.items.clear()
        elif command == "host":
            self.watcher.set_host(words[1] == "on")
        elif command == "items":
            return [name for name, _ in self.watcher.living()]
        elif command == "tooltip":
            _, _, title, text = self.property("ToolTip")
            return (title + text).split("\n")
        elif command == "pictures":
            return [f"{width}x{height}" for width, height, _ in self.property("IconPixmap")]
        elif command == "menu":
            return list(self.menu())
        elif command == "open":
            list(self.menu())
            self.exported().Event(0, "opened", dbus.Int32(0, variant_level=1), dbus.UInt32(0), timeout=5)
        elif command == "click":
            self.exported().Event(int(words[1]), "clicked", dbus.Int32(0, variant_level=1), dbus.UInt32(0), timeout=5)
        elif command == "activate":
            self.item(ITEM).Activate(0, 0, timeout=5)
        elif command == "start":
            program = self.bus.get_object("com.kelpford.Orrinvale", "/com/kelpford/Orrinvale", introspect=False)
            program.ActivateAction(words[1], dbus.Array([], signature="v"), dbus.Dictionary({}, signature="sv"),
                                   dbus_interface="org.freedesktop.Application", timeout=5)
        elif command == "layouts":
            for _ in range(int(words[1])):
                list(self.menu())
        return []


def main():
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    panel = Panel()
    loop = GLib.MainLoop()

    def on_line(*_):
        line = sys.stdin.readline()
        if not line:
            loop.quit()
            return False
        try:
            lines = panel.answer(line.split())
        except Exception as error:  # the one who asked reads it
            lines = [f"error: {error}"]
        print("\n".join([*lines, "."]), flush=True)
        return True

    GLib.io_add_watch(sys.stdin.fileno(), GLib.IO_IN | GLib.IO_HUP, on_line)
    loop.run()


main()
