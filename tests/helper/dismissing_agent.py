"""A polkit agent whose person closes every dialog: registers for the process of the given number and writes a line when it is ready."""
import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

PATH = "/com/kelpford/Orrinvale/Agent"


class Cancelled(dbus.DBusException):
    _dbus_error_name = "org.freedesktop.PolicyKit1.Error.Cancelled"


class Agent(dbus.service.Object):
    @dbus.service.method("org.freedesktop.PolicyKit1.AuthenticationAgent", in_signature="sssa{ss}saa{sv}")
    def BeginAuthentication(self, _action, _message, _icon, _details, _cookie, _identities):
        raise Cancelled("closed")

    @dbus.service.method("org.freedesktop.PolicyKit1.AuthenticationAgent", in_signature="s")
    def CancelAuthentication(self, _cookie):
        pass


def start_time(process):
    with open(f"/proc/{process}/stat", encoding="utf-8", errors="replace") as file:
        return int(file.read().rpartition(")")[2].split()[19])


def main(process):
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.SystemBus()
    agent = Agent(bus, PATH)
    authority = dbus.Interface(bus.get_object("org.freedesktop.PolicyKit1", "/org/freedesktop/PolicyKit1/Authority"),
                               "org.freedesktop.PolicyKit1.Authority")
    details = {"pid": dbus.UInt32(process), "start-time": dbus.UInt64(start_time(process))}
    authority.RegisterAuthenticationAgent(("unix-process", details), "C", PATH)
    print("ready", flush=True)
    GLib.MainLoop().run()
    return agent


if __name__ == "__main__":
    main(int(sys.argv[1]))
