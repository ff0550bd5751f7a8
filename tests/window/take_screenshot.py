#!/usr/bin/env python3
"""Takes the documents' picture of the studio from the real program, with some pings of which one is selected.

take_screenshot.py PROGRAM PICTURE
"""

import os
import sys
import time

from studio_session import StudioSession

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


def main():
    program, path = sys.argv[1:]
    with StudioSession(os.path.abspath(program)) as studio:
        compose(studio)
        studio.click(1150, 97 + 43 + 2 * 76)
        studio.move(660, 840)
        time.sleep(1.5)
        studio.save(path)
        print(path)


if __name__ == "__main__":
    main()
