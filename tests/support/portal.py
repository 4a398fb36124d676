"""A settings portal for tests, on the bus of the environment.

Tells what it was last told, as an argument or in a line on its terminal: "dark", "light", "none" or "font NAME". After
"slow" it thinks for a while before each answer.
"""

import sys
import time

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

INTERFACE = "org.freedesktop.portal.Settings"
SCHEME, FONT = ("org.freedesktop.appearance", "color-scheme"), ("org.gnome.desktop.interface", "font-name")
SCHEMES = {"dark": 1, "light": 2, "none": 0}


class Portal(dbus.service.Object):
    settings = {SCHEME: dbus.UInt32(SCHEMES["light"])}
    thinking = 0

    @dbus.service.method(INTERFACE, in_signature="ss", out_signature="v")
    def Read(self, group, key):
        time.sleep(self.thinking)
        if (group, key) not in self.settings:
            raise dbus.exceptions.DBusException("not found", name="org.freedesktop.portal.Error.NotFound")
        value = self.settings[group, key]
        return type(value)(value, variant_level=2)  # as real portals do: a variant in a variant

    @dbus.service.signal(INTERFACE, signature="ssv")
    def SettingChanged(self, group, key, value):
        pass

    def take(self, words):
        first, _, font = words.partition(" ")
        if first == "slow":
            self.thinking = 0.4
        else:
            key = FONT if first == "font" else SCHEME
            self.settings[key] = dbus.String(font) if first == "font" else dbus.UInt32(SCHEMES[first])
            self.SettingChanged(*key, self.settings[key])

    def read_line(self, source, _condition):
        self.take(source.readline().strip())
        return True


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.SessionBus()
portal = Portal(bus, "/org/freedesktop/portal/desktop")
for argument in sys.argv[1:]:
    portal.take(argument)
name = dbus.service.BusName("org.freedesktop.portal.Desktop", bus)
GLib.io_add_watch(open("/dev/tty"), GLib.IO_IN, portal.read_line)
print("ready", flush=True)
GLib.MainLoop().run()
