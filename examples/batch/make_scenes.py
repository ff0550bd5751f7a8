"""Makes a scene file of every row of a table: python3 make_scenes.py TABLE.csv DIRECTORY

The table's columns: name, wallpaper, photo, clock, app, sender, and then as many messages as you like. A row becomes
DIRECTORY/NAME.json, a scene in which one sender's messages arrive one after another. A photo, by its path from the
table, takes the place of the wallpaper. An app of the studio is named as there; any other name gets a tile with its
first letter.
"""

import csv
import json
import os
import pathlib
import sys


def landings(messages):
    """When each message lands, in milliseconds: a pause that grows with the length of the message before."""
    at = 700
    for message in messages:
        yield at
        at += 500 + 35 * len(message)


def scene(row, table, directory):
    name, wallpaper, photo, clock, app, sender, *messages = row
    messages = [message for message in messages if message]
    look = {"appId": app.replace(" ", "").lower(), "appLabel": app, "icon": app[:1]}
    return name, {
        "title": name,
        "wallpaper": "custom" if photo else wallpaper,
        "wallpaperUrl": os.path.relpath(table.parent / photo, directory) if photo else "",
        "timeLabel": clock,
        "notifications": [
            look | {"title": sender, "message": message, "delayMs": at}
            for message, at in zip(messages, landings(messages))
        ],
    }


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__.split("\n")[0])
    table_path, directory = map(pathlib.Path, sys.argv[1:])
    directory.mkdir(parents=True, exist_ok=True)
    with open(table_path, encoding="utf-8", newline="") as table:
        rows = csv.reader(table)
        next(rows)
        for row in rows:
            if row:
                name, document = scene(row, table_path, directory)
                (directory / f"{name}.json").write_text(json.dumps(document, ensure_ascii=False, indent=2) + "\n", "utf-8")


main()
