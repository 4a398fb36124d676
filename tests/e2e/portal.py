"""A settings portal for tests: dark or light, whichever word it last read from its terminal."""

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

INTERFACE = "org.freedesktop.portal.Settings"
GROUP, KEY = "org.freedesktop.appearance", "color-scheme"
SCHEMES = {"dark": 1, "light": 2}


class Portal(dbus.service.Object):
    scheme = SCHEMES["light"]

    @dbus.service.method(INTERFACE, in_signature="ss", out_signature="v")
    def Read(self, group, key):
        if (group, key) != (GROUP, KEY):
            raise dbus.exceptions.DBusException("not found", name="org.freedesktop.portal.Error.NotFound")
        # As real portals do: a variant in a variant.
        return dbus.UInt32(self.scheme, variant_level=2)

    @dbus.service.signal(INTERFACE, signature="ssv")
    def SettingChanged(self, group, key, value):
        pass

    def read_word(self, source, _condition):
        word = source.readline().strip()
        if not word:
            loop.quit()
            return False
        self.scheme = SCHEMES[word]
        self.SettingChanged(GROUP, KEY, dbus.UInt32(self.scheme))
        return True


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.SessionBus()
portal = Portal(bus, "/org/freedesktop/portal/desktop")
name = dbus.service.BusName("org.freedesktop.portal.Desktop", bus)
loop = GLib.MainLoop()
GLib.io_add_watch(open("/dev/tty"), GLib.IO_IN | GLib.IO_HUP, portal.read_word)
print("ready", flush=True)
loop.run()
