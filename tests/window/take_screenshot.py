#!/usr/bin/env python3
"""Takes the documents' picture of the studio from the real program, with some pings of which one is selected.

take_screenshot.py PROGRAM PICTURE
"""

import os
import sys
import time

from studio_session import StudioSession

# App, template, sender, text.
PINGS = [
    ("Messages", "Text", "Mom", "did you see this??"),
    ("TikTok", "Video like", "@maya", None),
    ("Instagram", "Comment", "jordan", None),
    ("Cash App", "Payment", "Alex", None),
    ("TikTok", "Going viral", None, None),
]


def fill(studio, field, words):
    studio.click_on(field, "text")
    studio.key("ctrl+a")
    studio.type(words)


def compose(studio):
    for app, template, sender, text in PINGS:
        studio.click_on(app, parent="App")
        studio.click_on(template, parent="Type")
        for field, words in (("Sender", sender), ("Text", text)):
            if words:
                fill(studio, field, words)
        studio.click_on("Add ping")
    fill(studio, "Title", "The day it went viral")
    studio.key("Return", "Escape")


def main():
    program, path = sys.argv[1:]
    with StudioSession(os.path.abspath(program)) as studio:
        compose(studio)
        studio.click_on("Ping 3, jordan")
        studio.move(660, 840)
        time.sleep(1.5)
        studio.save(path)
        print(path)


if __name__ == "__main__":
    main()
