#!/usr/bin/env python3
"""Works the real program in a real window, from the first ping to the finished movie.

real_window_test.py PROGRAM
"""

import json
import os
import shutil
import subprocess
import sys
import time

from studio_session import NEEDED_TOOLS, StudioSession

SKIPPED = 77

def expect(condition, what):
    if not condition:
        raise AssertionError("Did not hold: " + what)


def movie_streams(path):
    """What is in a movie; nothing while it is unfinished."""
    probe = subprocess.run(
        ["ffprobe", "-v", "quiet", "-count_frames", "-show_streams", "-of", "json", path],
        stdout=subprocess.PIPE, check=False)
    if probe.returncode != 0:
        return None
    return {stream["codec_type"]: stream for stream in json.loads(probe.stdout)["streams"]}


def cards(studio):
    """What the stage says about itself, newest card first."""
    return studio.control("Lock screen", "image")["description"]


def make_a_movie(program, window_manager):
    with StudioSession(program, window_manager=window_manager) as studio:
        expect(studio.geometry()[2:] == (1320, 860), "The window opens at its size.")
        window = studio.wait(studio.controls, "The window is told of.")[1]
        expect(window["role"] in ("frame", "window"), "The window is one, and not a " + window["role"])
        expect(all(min(each["place"][2:]) > 14 for each in studio.controls(role="filler")), "The grips are not told of.")
        # Pings of three apps, the last one of another template, the first one later.
        studio.key("ctrl+Return")
        studio.click_on("Instagram", parent="App")
        studio.click_on("Add ping")
        studio.click_on("Cash App", parent="App")
        studio.click_on(studio.controls(role="radio button", parent="Type")[1]["name"], parent="Type")
        studio.key("ctrl+Return")
        expect(cards(studio).startswith("Cash App: ") and cards(studio).endswith("TikTok: @maya, liked your video."),
               "The stage says which cards it shows: " + cards(studio))
        studio.click_on("Ping 1, @maya")
        expect("selected" in studio.control("Ping 1, @maya")["states"], "The row is selected.")
        studio.fill("Lands at (seconds)", "2,5")
        studio.key("Escape")
        expect("selected" not in studio.control("Ping 1, @maya")["states"], "Escape clears the selection.")
        studio.key("ctrl+z", "ctrl+y")
        expect("2.5s" in studio.control("Ping 1, @maya")["description"], "What was undone is done again.")

        # A photo from the disk.
        photo = os.path.join(studio.home, "red.png")
        subprocess.run(["convert", "-size", "600x900", "xc:#c02020", photo], check=True)
        studio.click_on("Upload lock screen photo")
        studio.wait_for_dialog("Choose a lock screen photo")
        studio.type(photo)
        studio.key("Return")
        studio.wait(lambda: "checked" in studio.control("Upload lock screen photo")["states"], "The photo is chosen.")
        stored = os.path.join(studio.home, ".local/share/Brisklet")
        expect(len(os.listdir(stored)) == 1, "A copy of the photo is stored.")
        x, y = studio.geometry()[:2]
        pixel = ("import", "-silent", "-window", "root", "-crop", f"1x1+{x + 660}+{y + 650}", "-format", "%[fx:r>4*b]", "info:")
        studio.wait(lambda: studio.output(*pixel) == "1", "The stage shows it.")

        studio.fill("Title", "Launch Day")
        studio.key("Return")

        finished = cards(studio)
        studio.key("Escape", "space")
        studio.wait(lambda: cards(studio) == "No cards", "Playing begins without cards.")
        studio.wait(lambda: cards(studio) == finished, "It ends with the finished stack.")

        movie = os.path.join(studio.home, "movie.mp4")
        studio.click_on("Text", "text")
        studio.key("ctrl+e")
        studio.wait_for_dialog("Export notification video")
        studio.key("ctrl+a")
        studio.type(movie[:-len(".mp4")])
        studio.key("Return")
        studio.wait(lambda: os.path.exists(movie), "The movie's name is completed.")
        studio.move(700, 26)
        streams = studio.wait(lambda: movie_streams(movie), "The movie is finished.", seconds=120)
        studio.wait(lambda: studio.controls("Export", "button"), "Export is ready again.")
        studio.wait(lambda: studio.opened(), "The movie's folder is shown.")
        expect(studio.opened() == ["file://" + studio.home], "Its folder, and nothing else: %s" % studio.opened())
        expect(studio.controls("The movie is finished.", "notification"), "The end of the export is announced.")
        expect(not os.path.exists(os.path.join(studio.home, ".config/QtProject.conf")), "The panels leave no history.")
        video = streams["video"]
        expect((video["width"], video["height"]) == (1170, 2532), "The movie's size.")
        # The latest landing is the edited one, and 1.8 s follow.
        expect(video["nb_read_frames"] == "129", "The movie's length, not %s frames." % video["nb_read_frames"])
        expect(streams["audio"]["sample_rate"] == "44100", "The movie's sound.")
        studio.click_on("Remove ping 1")
        expect(cards(studio) != finished, "A removed ping leaves the stage.")

        # The window itself: moved by its bar, zoomed by a double click, resized at its edge.
        x, y, width, height = studio.geometry()
        studio.drag(600, 26, 40, 30)
        studio.wait(lambda: studio.geometry()[:2] != (x, y), "The top bar moves the window.")
        time.sleep(0.5)
        studio.drag(1318, 400, -60, 0)
        studio.wait(lambda: studio.geometry()[2] < width, "The edge resizes the window.")
        expect(studio.geometry()[3] == height, "Only the width changes.")
        time.sleep(0.5)
        studio.click(600, 26, times=2)
        studio.wait(lambda: studio.geometry()[2:] == studio.size, "A double click zooms the window.")

        studio.key("ctrl+q")
        expect(studio.studio.wait(20) == 0, "The program ends well.")


def main():
    missing = [tool for tool in NEEDED_TOOLS + ("openbox", "xprop", "ffmpeg", "ffprobe") if not shutil.which(tool)]
    if missing:
        print("Skipped: a real window needs " + ", ".join(missing) + " (scripts/setup test installs them).")
        return SKIPPED
    elsewhere = {key: value for key, value in os.environ.items() if not key.startswith(("QT_", "DISPLAY", "WAYLAND_"))}
    for display, words in (({}, "no display"), ({"WAYLAND_DISPLAY": "none"}, "qt6-wayland"), ({"DISPLAY": ":none"}, "libqt6gui6")):
        failed = subprocess.run([sys.argv[1]], env={**elsewhere, **display}, stderr=subprocess.PIPE, text=True, check=False)
        expect(failed.returncode == 1 and words in failed.stderr, "One sentence says what is missing: " + failed.stderr)
    for window_manager in ("openbox", None):
        print("With a window manager:" if window_manager else "Without one:", flush=True)
        make_a_movie(os.path.abspath(sys.argv[1]), window_manager)
        print("  all as expected", flush=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
