"""A disk service for dbusmock whose drives stand in a text, one object a line:

  stick drive eject power optical siblings=hub
  sdb1 8:17 on=stick in=sdb at=/media/a unlocked=dm-0 locked=sdb2 loop swap

Operations are written to a file as they come, and unmounting takes the device's last line out of a table of mounts. For "Unmount sdb1"
another answer can be given: "busy", "denied" and "failed" are errors, "not mounted" is true when it is told, "gone" takes the drive away, "exit" ends the service,
"lie" does nothing.
"""
import os

import dbus

BUS_NAME = "org.freedesktop.UDisks2"
MAIN_OBJ = "/org/freedesktop/UDisks2"
SYSTEM_BUS = True
IS_OBJECT_MANAGER = True

ERRORS = {
    "busy": ("org.freedesktop.UDisks2.Error.DeviceBusy", "Error unmounting: target is busy"),
    "busy in words": ("org.freedesktop.UDisks2.Error.Failed", "Error unmounting: target is busy."),
    "denied": ("org.freedesktop.UDisks2.Error.NotAuthorizedDismissed", "Not authorized to perform operation"),
    "failed": ("org.freedesktop.UDisks2.Error.Failed", "Error ejecting: medium error"),
    "not mounted": ("org.freedesktop.UDisks2.Error.NotMounted", "Device is not mounted"),
}
GONE = "org.freedesktop.DBus.Error.UnknownObject"

state = {}


def block(name):
    return dbus.ObjectPath(f"{MAIN_OBJ}/block_devices/{name.replace('-', '_2d')}" if name else "/")


def drive(name):
    return dbus.ObjectPath(f"{MAIN_OBJ}/drives/{name}" if name else "/")


def text(path):
    return dbus.Array(path.encode("latin-1") + b"\0", signature="y")


def take_mount(number, every):
    with open(state["mounts"], encoding="latin-1") as file:
        lines = file.readlines()
    of_device = [line for line in lines if f" {number} " in line]
    for line in of_device if every else of_device[-1:]:
        lines.remove(line)
    with open(state["mounts"] + ".new", "w", encoding="latin-1") as file:
        file.writelines(lines)
    os.rename(state["mounts"] + ".new", state["mounts"])


def operation(name, what, number):
    def run(_object, _options):
        with open(state["calls"], "a", encoding="latin-1") as file:
            file.write(f"{what} {name}\n")
        answer = state["answers"].get(f"{what} {name}")
        if answer == "exit":
            os._exit(0)
        if answer == "gone":
            take_mount(number, True)
            raise dbus.exceptions.DBusException("No such object path", name=GONE)
        if answer == "not mounted":
            take_mount(number, False)
        if answer in ERRORS:
            raise dbus.exceptions.DBusException(ERRORS[answer][1], name=ERRORS[answer][0])
        if what == "Unmount" and answer != "lie":
            take_mount(number, False)

    return run


def add(mock, path, name, number, interfaces):
    """The interfaces with their properties and operations; the first makes the object."""
    first = True
    for interface, (properties, operations) in interfaces.items():
        full = f"{BUS_NAME}.{interface}"
        methods = [(each, "a{sv}", "", operation(name, each, number)) for each in operations]
        if first:
            mock.AddObject(path, full, properties, methods)
        else:
            import dbusmock
            dbusmock.get_object(path).AddProperties(full, properties)
            dbusmock.get_object(path).AddMethods(full, methods)
        first = False


def add_drive(mock, name, words, values):
    properties = {
        "Ejectable": dbus.Boolean("eject" in words),
        "CanPowerOff": dbus.Boolean("power" in words),
        "MediaCompatibility": dbus.Array(["optical_cd"] if "optical" in words else ["thumb"], signature="s"),
        "SiblingId": values.get("siblings", ""),
        "Size": dbus.UInt64(1 << 40),
    }
    add(mock, drive(name), name, "", {"Drive": (properties, ["Eject", "PowerOff"])})


def add_block(mock, name, words, values):
    number = words[1]
    major, minor = map(int, number.split(":"))
    configuration = dbus.Array([("fstab", {"dir": text("/x")})], signature="(sa{sv})")
    interfaces = {"Block": ({
        "DeviceNumber": dbus.UInt64(os.makedev(major, minor)),
        "Device": text(f"/dev/{name}"),
        "Symlinks": dbus.Array([text("/dev/a"), text("/dev/b")], signature="ay"),
        "Configuration": configuration,
        "Drive": drive(values.get("on")),
        "CryptoBackingDevice": block(values.get("locked")),
    }, [])}
    if "in" in values:
        interfaces["Partition"] = ({"Table": block(values["in"]), "Number": dbus.UInt32(1)}, [])
    if "at" in values:
        points = dbus.Array([text(each) for each in values["at"].split(",")], signature="ay")
        interfaces["Filesystem"] = ({"MountPoints": points}, ["Unmount"])
    if "crypt" in words or "unlocked" in values:
        interfaces["Encrypted"] = ({"CleartextDevice": block(values.get("unlocked"))}, ["Lock"])
    if "swap" in words:
        interfaces["Swapspace"] = ({"Active": dbus.Boolean(True)}, [])
    if "loop" in words:
        interfaces["Loop"] = ({"Autoclear": dbus.Boolean(False)}, ["Delete"])
    add(mock, block(name), name, number, interfaces)


def load(mock, parameters):
    state.update(parameters)
    for line in parameters["disks"].splitlines():
        words = line.split()
        if not words:
            continue
        values = dict(word.split("=", 1) for word in words if "=" in word)
        (add_drive if words[1] == "drive" else add_block)(mock, words[0], words, values)
    with open(parameters["calls"], "a", encoding="latin-1") as file:
        file.write("ready\n")
