#!/usr/bin/env python3
"""Takes the pictures of the studio for the documents from the real program.

take_screenshots.py PROGRAM FOLDER
"""

import os
import sys
import time

from studio_session import StudioSession

SCALE = 2

# Centres of the app chips and of the message templates' columns, and the height of the first template row.
APPS = {"tiktok": 36, "instagram": 79, "messages": 122, "snapchat": 166, "cashapp": 209}
APP_ROW, TYPE_COLUMNS, TYPE_ROW, TYPE_PITCH = 219, (80, 209), 312, 34

# App, template (column, row), rows of templates, sender, text.
PINGS = [
    ("messages", (0, 0), 2, "Mom", "did you see this??"),
    ("tiktok", (0, 0), 3, "@maya", None),
    ("instagram", (1, 1), 4, "jordan", None),
    ("cashapp", (0, 0), 1, "Alex", None),
    ("tiktok", (1, 2), 3, None, None),
]


def compose(studio):
    for app, (column, row), rows, sender, text in PINGS:
        studio.click(APPS[app], APP_ROW)
        studio.click(TYPE_COLUMNS[column], TYPE_ROW + row * TYPE_PITCH)
        below_types = 412 + (rows - 3) * TYPE_PITCH
        for words, y in ((sender, below_types + 43 + 38), (text, below_types + 43 + 65 + 38)):
            if words:
                studio.click(144, y)
                studio.key("ctrl+a")
                studio.type(words)
        studio.click(144, below_types + 43 + 130 + 17)
    studio.click(120, 26)
    studio.key("ctrl+a")
    studio.type("The day it went viral")
    studio.key("Return", "Escape")
    studio.move(660, 840)


def take(program, folder, name, wallpaper, then):
    size = (1400 * SCALE, 950 * SCALE)
    with StudioSession(program, size=size, scale=SCALE) as studio:
        studio.click(40 + 52 * wallpaper, 118)
        compose(studio)
        then(studio)
        path = os.path.join(folder, name)
        studio.save(path)
        print(path)


def select_third(studio):
    studio.click(1150, 97 + 43 + 2 * 76)
    studio.move(660, 840)
    time.sleep(1.5)


def play_into_the_third(studio):
    studio.click(1068, 26)
    studio.move(660, 840)
    time.sleep(1.75)


def main():
    program, folder = os.path.abspath(sys.argv[1]), sys.argv[2]
    os.makedirs(folder, exist_ok=True)
    take(program, folder, "studio.png", 0, select_third)
    take(program, folder, "studio-playing.png", 1, play_into_the_third)


if __name__ == "__main__":
    main()
