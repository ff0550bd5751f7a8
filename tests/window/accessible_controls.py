#!/usr/bin/env python3
"""Prints what assistive technology sees of the studio, as JSON: the controls of all its windows, in their order."""

import json

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402 pylint: disable=wrong-import-position

STATES = {name: getattr(Atspi.StateType, name.upper())
          for name in ("showing", "focused", "checked", "selected", "enabled", "active", "modal")}


def walk(control, parent):
    states = control.get_state_set()
    place = control.get_component_iface() and control.get_extents(Atspi.CoordType.SCREEN)
    found = {
        "role": control.get_role_name().replace("push button", "button"), "name": control.get_name(), "description": control.get_description(),
        "parent": parent, "states": [name for name, state in STATES.items() if states.contains(state)],
        "place": [place.x, place.y, place.width, place.height] if place else None,
    }
    if control.get_text_iface():
        found["text"] = Atspi.Text.get_text(control, 0, -1)
    if control.get_value_iface():
        found["value"] = Atspi.Value.get_current_value(control)
    yield found
    for i in range(control.get_child_count()):
        child = control.get_child_at_index(i)
        if child:
            yield from walk(child, found["name"])


def main():
    desktop = Atspi.get_desktop(0)
    programs = [desktop.get_child_at_index(i) for i in range(desktop.get_child_count())]
    print(json.dumps([found for program in programs if program for found in walk(program, None)]))


if __name__ == "__main__":
    main()
