"""What a screen reader finds in Glintar's windows.

accessible.py see|gone|press|focus WINDOW [NAME...]

Waits until the window shows something under each name, is not there, or has a control of that name, which is pressed or
gets the keyboard. WINDOW and NAME are regular expressions for the whole name. Prints nothing once that is done; after
some seconds, what there is instead.
"""

import re
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib

CONTROLS = ("push button", "check box", "radio button", "page tab", "text", "password text")


def children(node):
    return [child for child in (node.get_child_at_index(i) for i in range(node.get_child_count())) if child]


def shown(node):
    """The node and all below it that is on the screen."""
    if node.get_state_set().contains(Atspi.StateType.SHOWING):
        yield node
        for child in children(node):
            yield from shown(child)


def windows():
    programs = [program for program in children(Atspi.get_desktop(0)) if program.get_name().startswith("glintar")]
    return [window for program in programs for window in children(program)]


def attempt(operation, wanted, *names):
    Atspi.get_desktop(0).clear_cache()
    nodes = [node for window in windows() if re.fullmatch(wanted, window.get_name()) for node in shown(window)]
    if operation == "gone":
        return not nodes
    if operation != "see":
        nodes = [node for node in nodes if node.get_role_name() in CONTROLS]
    hits = [next((node for node in nodes if re.fullmatch(name, node.get_name())), None) for name in names]
    if operation == "see" or not all(hits):
        return all(hits)
    return hits[0].grab_focus() if operation == "focus" else hits[0].do_action(0)


end = time.monotonic() + 15
while time.monotonic() < end:
    try:
        if attempt(*sys.argv[1:]):
            sys.exit()
    except GLib.Error:
        pass  # it went while it was looked at
    time.sleep(0.05)
print("There is:")
for window in windows():
    for node in shown(window):
        print(f"  {window.get_name()}: {node.get_role_name()} {node.get_name()!r}")
