"""Reads a window as a screen reader does, over AT-SPI's protocol. Only a node's states are cached."""
from gi.repository import Gio, GLib

# Numbers of the protocol.
STATES = {"focusable": 11, "focused": 12, "sensitive": 24, "showing": 25}
LABELLED_BY = 2
SCREEN = 0
BUS_FLAGS = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION


def call(bus, owner, path, method, types="()", *values):
    """Calls the method interface.method. Returns its result, or a tuple of several."""
    interface, _, name = method.rpartition(".")
    arguments = GLib.Variant(types, values)
    results = bus.call_sync(owner, path, interface, name, arguments, None, Gio.DBusCallFlags.NONE, 30_000).unpack()
    return results[0] if len(results) == 1 else results


def accessibility_bus():
    session = Gio.bus_get_sync(Gio.BusType.SESSION)
    session.set_exit_on_close(False)
    address = call(session, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus.GetAddress")
    return Gio.DBusConnection.new_for_address_sync(address, BUS_FLAGS)


def listen_to_announcements(bus, on_announcement):
    """Calls `on_announcement` with each text from the main loop."""
    call(bus, "org.a11y.atspi.Registry", "/org/a11y/atspi/registry", "org.a11y.atspi.Registry.RegisterEvent", "(sass)",
         "object:announcement", [], "")
    bus.signal_subscribe(None, "org.a11y.atspi.Event.Object", "Announcement", None, None, Gio.DBusSignalFlags.NONE,
                         lambda *signal: on_announcement(signal[5].unpack()[3]))


def find_window(bus, pid):
    """The first window of the process; None while it has none."""
    try:
        for owner, path in call(bus, "org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root",
                                "org.a11y.atspi.Accessible.GetChildren"):
            if pid == call(bus, "org.freedesktop.DBus", "/", "org.freedesktop.DBus.GetConnectionUnixProcessID", "(s)",
                           owner):
                return next(iter(Node(bus, owner, path).children()), None)
    except GLib.Error:  # a process that has just ended
        pass
    return None


class Node:
    def __init__(self, bus, owner, path):
        self.place = bus, owner, path

    def call(self, method, types="()", *values):
        return call(*self.place, f"org.a11y.atspi.{method}", types, *values)

    def get(self, interface, name):
        return call(*self.place, "org.freedesktop.DBus.Properties.Get", "(ss)", f"org.a11y.atspi.{interface}", name)

    def children(self):
        return [Node(self.place[0], *child) for child in self.call("Accessible.GetChildren")]

    def has(self, state):
        """As it was when seen() gave this node."""
        return self.states >> STATES[state] & 1

    def labels(self):
        relations = self.call("Accessible.GetRelationSet")
        return [Node(self.place[0], *targets[0]) for kind, targets in relations if kind == LABELLED_BY]

    def spoken(self):
        """The role and the name; the label's name when there is a label."""
        named = (self.labels() or [self])[0]
        return f"{self.call('Accessible.GetRoleName')} {named.get('Accessible', 'Name')}"

    def seen(self):
        """This node and what is in it, as far as it is showing, in reading order."""
        self.states = self.call("Accessible.GetState")[0]
        if self.has("showing"):
            yield self
            for child in self.children():
                yield from child.seen()

    def find(self, spoken):
        return next((node for node in self.seen() if node.spoken() == spoken), None)

    def focus(self):
        """What has the keyboard's focus in this window, as it is spoken; "" when nothing has."""
        return next((node.spoken() for node in list(self.seen())[1:] if node.has("focused")), "")
