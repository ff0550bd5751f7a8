"""The studio on a display of its own, worked with pointer and keys as a person would."""

import json
import os
import shutil
import signal
import subprocess
import tempfile
import time

NEEDED_TOOLS = ("Xvfb", "xdotool", "import", "convert", "dbus-daemon")

# The one that distributions package the library for assistive technology for.
SYSTEMS_PYTHON = "/usr/bin/python3"

# A session bus on which nobody lives but the service that controls are found by.
BUS = """<busconfig>
  <type>session</type>
  <listen>unix:path=%s</listen>
  <servicedir>%s</servicedir>
  <policy context="default"><allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/></policy>
</busconfig>"""

# Stands in for the desktop's opener: it writes down what it is to open.
OPENER = """#!/bin/sh
echo "$1" >>"$HOME/opened"
"""


class StudioSession:
    """Starts the program in an empty home and on a bus of its own, without a sound server or a file manager.

    Coordinates are points of the studio's window.
    """

    def __init__(self, program, size=(1400, 950), scale=1, window_manager="openbox"):
        self.program, self.size, self.scale, self.window_manager = program, size, scale, window_manager
        self.processes = []

    def __enter__(self):
        self.home = tempfile.mkdtemp(prefix="brisklet-window-")
        runtime, tools, services = (os.path.join(self.home, name) for name in ("runtime", "bin", "services"))
        for folder in (runtime, tools, services):
            os.mkdir(folder, 0o700)
        opener = os.path.join(tools, "xdg-open")
        self.write(opener, OPENER)
        os.chmod(opener, 0o755)
        bus, bus_settings = os.path.join(runtime, "bus"), os.path.join(self.home, "bus.conf")
        self.write(bus_settings, BUS % (bus, services))
        shutil.copy("/usr/share/dbus-1/services/org.a11y.Bus.service", services)

        self.environment = {key: value for key, value in os.environ.items()
                            if key != "WAYLAND_DISPLAY" and not key.startswith(("QT_", "XDG_", "AT_SPI"))}
        self.environment.update(
            HOME=self.home, XDG_RUNTIME_DIR=runtime, PATH=tools + ":" + os.environ["PATH"],
            DBUS_SESSION_BUS_ADDRESS="unix:path=" + bus, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
            QT_QPA_PLATFORM="xcb", QT_SCALE_FACTOR=str(self.scale),
            PULSE_SERVER="unix:" + os.path.join(runtime, "none"))
        try:
            self.start_display()
            self.start(["dbus-daemon", "--nofork", "--config-file=" + bus_settings], stderr=subprocess.DEVNULL)
            self.wait(lambda: os.path.exists(bus), "The bus starts.")
            if self.window_manager:
                self.start([self.window_manager, "--sm-disable"], stderr=subprocess.DEVNULL)
                self.wait(lambda: "_NET_SUPPORTING_WM_CHECK(WINDOW)" in self.output(
                    "xprop", "-root", "_NET_SUPPORTING_WM_CHECK"), "The window manager starts.")
            self.studio = self.start([self.program])
            self.window = self.wait(self.windows, "The studio's window opens.")[-1]
            self.wait(lambda: int(self.output("import", "-silent", "-window", "root", "-format", "%k", "info:")) > 999,
                      "The window is painted.")
        except BaseException as failure:
            self.__exit__(failure)
            raise
        return self

    def __exit__(self, *failure):
        if any(failure):
            self.save_failure()
        for process in reversed(self.processes):
            if process.poll() is None:
                process.send_signal(signal.SIGTERM)
        for process in reversed(self.processes):
            try:
                process.wait(10)
            except subprocess.TimeoutExpired:
                process.kill()
        shutil.rmtree(self.home, ignore_errors=True)

    @staticmethod
    def write(path, text):
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def opened(self):
        """What the desktop was asked to open."""
        path = os.path.join(self.home, "opened")
        return open(path, encoding="utf-8").read().split() if os.path.exists(path) else []

    def controls(self, name=None, role=None, parent=None):
        """What assistive technology sees, outermost first: all, or those of a name, a role, within a parent of a name."""
        script = os.path.join(os.path.dirname(os.path.abspath(__file__)), "accessible_controls.py")
        found = json.loads(self.output(SYSTEMS_PYTHON, "-B", script) or "[]")
        return [each for each in found if "showing" in each["states"] and name in (None, each["name"])
                and role in (None, each["role"]) and parent in (None, each["parent"])]

    def control(self, name=None, role=None, parent=None):
        return self.wait(lambda: self.controls(name, role, parent), "There is %s %s" % (role or "a control", name))[-1]

    def click_on(self, name=None, role=None, parent=None, times=1):
        """Scrolls no column: what is to be clicked is in view."""
        x, y, width, height = self.control(name, role, parent)["place"]
        left, top = self.geometry()[:2]
        self.click((x + width / 2 - left) / self.scale, (y + height / 2 - top) / self.scale, times)

    def fill(self, field, words):
        self.click_on(field, "text")
        self.key("ctrl+a")
        self.type(words)

    def start(self, command, **options):
        process = subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL, **options)
        self.processes.append(process)
        return process

    def start_display(self):
        read, write = os.pipe()
        self.start(["Xvfb", "-displayfd", str(write), "-screen", "0", "%dx%dx24" % self.size, "-noreset",
                    "-nolisten", "tcp"],
                   pass_fds=(write,), stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as number:
            self.environment["DISPLAY"] = ":" + number.readline().strip()

    def output(self, *command):
        return subprocess.run(command, env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, text=True, check=False).stdout

    def wait(self, condition, what, seconds=20):
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            result = condition()
            if result:
                return result
            time.sleep(0.05)
        raise AssertionError("Did not happen: " + what)

    def windows(self):
        """All visible windows of the program."""
        return self.output("xdotool", "search", "--onlyvisible", "--class", "brisklet").split()

    def wait_for_dialog(self, title):
        self.wait(lambda: self.output("xdotool", "search", "--onlyvisible", "--name", "^%s$" % title), title)
        time.sleep(0.5)  # until it has the keyboard

    def geometry(self):
        lines = self.output("xdotool", "getwindowgeometry", "--shell", self.window).splitlines()
        values = dict(line.split("=") for line in lines)
        return tuple(int(values[key]) for key in ("X", "Y", "WIDTH", "HEIGHT"))

    def xdotool(self, *arguments):
        subprocess.run(("xdotool",) + tuple(str(each) for each in arguments), env=self.environment, check=True,
                       stdout=subprocess.DEVNULL)

    def move(self, x, y):
        self.xdotool("mousemove", "--window", self.window, round(x * self.scale), round(y * self.scale))

    def click(self, x, y, times=1):
        self.move(x, y)
        self.xdotool("click", "--repeat", times, "--delay", 60, 1)
        time.sleep(0.15)

    def drag(self, x, y, by_x, by_y):
        self.move(x, y)
        self.xdotool("mousedown", 1)
        for _ in range(10):
            self.xdotool("mousemove_relative", "--", by_x // 10, by_y // 10)
            time.sleep(0.03)
        self.xdotool("mouseup", 1)

    def key(self, *names):
        self.xdotool("key", "--delay", 40, *names)
        time.sleep(0.1)

    def type(self, text):
        self.xdotool("type", "--delay", 25, text)
        time.sleep(0.1)

    def save_failure(self):
        path = os.path.join(os.getcwd(), "real_window_failure.png")
        if subprocess.run(["import", "-silent", "-window", "root", path], env=self.environment, check=False,
                          stderr=subprocess.DEVNULL).returncode == 0:
            print("The screen then: " + path)

    def save(self, path):
        x, y, width, height = self.geometry()
        subprocess.run(["import", "-silent", "-window", "root", "-crop", "%dx%d+%d+%d" % (width, height, x, y),
                        "+repage", path], env=self.environment, check=True)
