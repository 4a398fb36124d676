"""What a screen reader finds in Glintar's windows.

accessible.py see WINDOW NAME...     waits until the window shows something under each name
accessible.py gone WINDOW            waits until there is no such window
accessible.py press WINDOW NAME      waits for a control of that name and presses it
accessible.py focus WINDOW NAME      the same, and gives it the keyboard

WINDOW and NAME are regular expressions for the whole name. Prints nothing once that is done; after some seconds, what
there is instead.
"""

import re
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib

PATIENCE = 15
CONTROLS = (
    Atspi.Role.PUSH_BUTTON, Atspi.Role.CHECK_BOX, Atspi.Role.RADIO_BUTTON, Atspi.Role.PAGE_TAB, Atspi.Role.TEXT,
    Atspi.Role.PASSWORD_TEXT)


def children(node):
    return [child for child in (node.get_child_at_index(i) for i in range(node.get_child_count())) if child]


def shown(node):
    """The node and all below it that is on the screen."""
    if node.get_state_set().contains(Atspi.StateType.SHOWING):
        yield node
        for child in children(node):
            yield from shown(child)


def windows():
    applications = children(Atspi.get_desktop(0))
    return [window for application in applications if application.get_name().startswith("glintar")
            for window in children(application)]


def found(wanted, names, is_control):
    nodes = [node for window in windows() if re.fullmatch(wanted, window.get_name()) for node in shown(window)
             if not is_control or node.get_role() in CONTROLS]
    hits = [next((node for node in nodes if re.fullmatch(text, node.get_name())), None) for text in names]
    return hits if nodes and all(hits) else None


def act(operation, node):
    if operation == "focus":
        return node.grab_focus()
    actions = [node.get_action_name(i) for i in range(node.get_n_actions())]
    return node.do_action(next((i for i, text in enumerate(actions) if text in ("Press", "Toggle")), 0))


def attempt(operation, window, *names):
    Atspi.get_desktop(0).clear_cache()
    if operation == "gone":
        return not any(re.fullmatch(window, node.get_name()) for node in windows() if any(shown(node)))
    hits = found(window, names, operation != "see")
    return bool(hits) and (operation == "see" or act(operation, hits[0]))


end = time.monotonic() + PATIENCE
while True:
    try:
        if attempt(*sys.argv[1:]):
            sys.exit()
    except GLib.Error:
        pass  # it went while it was looked at
    if time.monotonic() > end:
        break
    time.sleep(0.05)
print("There is:")
for window in windows():
    for node in shown(window):
        print(f"  {window.get_name()}: {node.get_role_name()} {node.get_name()!r}")
