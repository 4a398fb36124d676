"""Another program on the message bus of the environment, which does one thing to the key ring or stands in its place.

    write SERVICE ACCOUNT SECRET | count SERVICE | lock | unlock | silent NAME FILE | refusing NAME FILE

The last two own the name, and answer no call or refuse each. For each call the file grows by a byte.
"""

import os
import sys

import dbus
import dbus.lowlevel
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

LOGIN = dbus.ObjectPath("/org/freedesktop/secrets/collection/login")

dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.SessionBus()


def at(path, interface):
    return dbus.Interface(bus.get_object("org.freedesktop.secrets", path), interface)


def service(interface="org.freedesktop.Secret.Service"):
    return at("/org/freedesktop/secrets", interface)


def secret(text):
    """As the service takes it: in a session, not encrypted."""
    session = service().OpenSession("plain", dbus.String("", variant_level=1))[1]
    return dbus.Struct((session, dbus.ByteArray(), dbus.ByteArray(text.encode()), "text/plain"), signature="oayays")


def write(name, account, text):
    attributes = dbus.Dictionary({"service": name, "account": account}, signature="ss")
    properties = dbus.Dictionary({"org.freedesktop.Secret.Item.Attributes": attributes}, signature="sv")
    at(LOGIN, "org.freedesktop.Secret.Collection").CreateItem(properties, secret(text), True)


def stand_in(manner, name, file):
    def take(connection, message):
        if not isinstance(message, dbus.lowlevel.MethodCallMessage):
            return dbus.lowlevel.HANDLER_RESULT_NOT_YET_HANDLED
        with open(file, "a") as calls:
            calls.write(".")
        if manner == "refusing":
            connection.send_message(dbus.lowlevel.ErrorMessage(message, "org.freedesktop.DBus.Error.AccessDenied", "no"))
        return dbus.lowlevel.HANDLER_RESULT_HANDLED

    bus.add_message_filter(take)
    owned = dbus.service.BusName(name, bus)
    os.write(3, b"ready\n")
    GLib.MainLoop().run()


command, *words = sys.argv[1:]
if command == "write":
    write(*words)
elif command == "count":
    print("." * len(service().SearchItems(dbus.Dictionary({"service": words[0]}, signature="ss"))[0]), end="")
elif command == "lock":
    service().Lock([LOGIN])
elif command == "unlock":
    guilt = service("org.gnome.keyring.InternalUnsupportedGuiltRiddenInterface")
    guilt.UnlockWithMasterPassword(LOGIN, secret("open sesame"))
else:
    stand_in(command, *words)
