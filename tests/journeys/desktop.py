"""A virtual desktop and a person at it: Xvfb, a window manager, hands (xdotool) and eyes (screen shots, the
selection). Journeys start the real program on it and judge by what a person would see or find on disk.

Nothing waits for a span of time where a condition can be waited for; `until` polls one."""

import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM = os.environ.get("KESTRUNE_PROGRAM", "")
SOURCE = pathlib.Path(__file__).resolve().parents[2]
PICTURES = pathlib.Path(os.environ.get("KESTRUNE_PICTURES", tempfile.gettempdir() + "/kestrune-pictures"))
# A dark desktop, as the toolkit reads it from a person's settings.
DARK = """[Colors:Window]
BackgroundNormal=41,44,48
BackgroundAlternate=49,54,59
ForegroundNormal=239,240,241
ForegroundInactive=140,144,148
[Colors:Button]
BackgroundNormal=49,54,59
ForegroundNormal=239,240,241
ForegroundInactive=120,124,128
[Colors:View]
BackgroundNormal=27,30,32
ForegroundNormal=239,240,241
ForegroundInactive=120,124,128
[Colors:Selection]
BackgroundNormal=61,118,183
ForegroundNormal=255,255,255
[Colors:Tooltip]
BackgroundNormal=49,54,59
ForegroundNormal=239,240,241
"""


class TimeOut(AssertionError):
    pass


def until(condition, what, seconds=20, every=0.05):
    """The condition's first true value; a failure that says what did not happen."""
    end = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise TimeOut(f"did not happen within {seconds} s: {what}")
        time.sleep(every)


class Desktop:
    def __init__(self, width, height):
        self.processes = []
        self.env = dict(os.environ)
        read, write = os.pipe()
        self._start(["Xvfb", "-displayfd", str(write), "-screen", "0", f"{width}x{height}x24", "-nolisten", "tcp"],
                    pass_fds=[write])
        os.close(write)
        with os.fdopen(read) as pipe:
            number = pipe.readline().strip()
        self.env.update(DISPLAY=":" + number, QT_QPA_PLATFORM="xcb")
        self.env.pop("WAYLAND_DISPLAY", None)
        self._start(["openbox", "--sm-disable"])
        until(lambda: self.run("xprop", "-root", "_NET_SUPPORTING_WM_CHECK", check=False).find("window id") > 0,
              "a window manager")

    def _start(self, command, **more):
        process = subprocess.Popen(command, env=self.env, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, **more)
        self.processes.append(process)
        return process

    def run(self, *command, check=True):
        done = subprocess.run(command, env=self.env, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, timeout=60)
        if check and done.returncode:
            raise AssertionError(f"{command} failed: {done.stderr.decode()}")
        return done.stdout.decode(errors="replace")

    def picture(self, name):
        PICTURES.mkdir(parents=True, exist_ok=True)
        path = PICTURES / (name + ".png")
        self.run("import", "-window", "root", str(path))
        return path

    def pixels(self, window="root", area=None):
        """All that is seen there, to be compared: quicker than a picture file. area: "WIDTHxHEIGHT+X+Y"."""
        part = ["-crop", area] if area else []
        return subprocess.run(["import", "-window", window, *part, "-depth", "8", "rgb:-"], env=self.env, check=True,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, timeout=60).stdout

    def close(self):
        for process in reversed(self.processes):
            process.kill()
            process.wait()


class Kestrune:
    """One run of the program, with settings folders of its own unless `home` is given."""

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.kill()

    def __init__(self, desktop, *arguments, home, cwd=None, extra_env=None):
        self.desktop = desktop
        self.home = home
        env = dict(desktop.env, HOME=str(home), XDG_CONFIG_HOME=str(home / "config"),
                   XDG_DATA_HOME=str(home / "data"), XDG_RUNTIME_DIR=str(home / "runtime"), SHELL="/bin/bash",
                   KESTRUNE_MACHINE_DIR=str(home / "machine"), PS1="$ ")
        for variable in ("DBUS_SESSION_BUS_ADDRESS", "DBUS_STARTER_ADDRESS"):
            env.pop(variable, None)
        env.update(extra_env or {})
        for folder in ("config", "data", "runtime", "machine"):
            (home / folder).mkdir(exist_ok=True)
        (home / "runtime").chmod(0o700)
        self.log = tempfile.TemporaryFile()
        self.process = subprocess.Popen([PROGRAM, *map(str, arguments)], env=env, cwd=cwd or home,
                                        stdin=subprocess.DEVNULL, stdout=self.log, stderr=self.log)

    # --- windows
    def windows(self):
        out = self.desktop.run("xdotool", "search", "--onlyvisible", "--pid", str(self.process.pid), "--name", ".",
                               check=False)
        return out.split()

    def window(self, seconds=20):
        """The main window, active. A program that ended instead is a failure that shows what it said."""
        def found():
            if self.process.poll() is not None:
                raise AssertionError(f"the program ended with {self.process.returncode}: {self.output()}")
            return [w for w in self.windows() if self.title(w).startswith("Kestrune 7")]
        window = self.main = until(found, "the main window", seconds)[0]
        self.desktop.run("xdotool", "windowactivate", "--sync", window)
        return window

    def title(self, window):
        return self.desktop.run("xdotool", "getwindowname", window, check=False).strip()

    def titles(self):
        return [self.title(w) for w in self.windows()]

    def geometry(self, window):
        out = self.desktop.run("xdotool", "getwindowgeometry", "--shell", window)
        values = dict(line.split("=") for line in out.split())
        return tuple(int(values[k]) for k in ("X", "Y", "WIDTH", "HEIGHT"))

    def resize(self, window, width, height):
        self.desktop.run("xdotool", "windowsize", window, str(width), str(height))

    # --- hands
    def type(self, text):
        for index, line in enumerate(text.split("\n")):
            if index:
                self.key("Return")
            if line:
                # A character that the keyboard lacks is put on a key for the moment; programs need time to see it.
                self.desktop.run("xdotool", "type", "--delay", "8" if line.isascii() else "120", "--", line)

    def key(self, *keys):
        self.desktop.run("xdotool", "key", "--delay", "20", *keys)

    def click(self, x, y, button=1):
        """At a place counted from the corner of the main window's inside."""
        self.desktop.run("xdotool", "mousemove", "--window", self.main, str(x), str(y), "click", str(button))

    def save(self, entry="s"):
        """File, Save; "l" for Save Layout. Keys in a session belong to the host, so the mouse opens the menu."""
        self.click(28, 10)
        self.key(entry)

    # --- eyes
    def screen_text(self):
        """The session's visible text: selected with the mouse from corner to corner of the active session, and
        read as any other program would read the selection."""
        _, _, width, height = self.geometry(self.main)
        text = ""
        middle = str(width // 2), str(height // 2)
        for end in ((2, TOP_OF_SESSION), (width - 4, height - BOTTOM_OF_SESSION)):
            # Shift keeps the mouse from a program that asked for it.
            self.click(*middle)
            self.desktop.run("xdotool", "keydown", "shift", "mousedown", "1",
                             "mousemove", "--window", self.main, str((width // 2 + end[0]) // 2),
                             str((height // 2 + end[1]) // 2),
                             "mousemove", "--window", self.main, str(end[0]), str(end[1]), "mouseup", "1",
                             "keyup", "shift")
            text += self.desktop.run("timeout", "5", "xclip", "-o", "-selection", "primary", check=False)
        self.click(*middle)
        return text

    def shows(self, *needles, seconds=20, under_panel=False):
        """Waits until one look at the screen finds them all, and returns what it saw. under_panel: the panel over
        the terminal, which keeps the mouse from it, is cancelled first."""
        def there():
            if under_panel:
                self.key("Escape")
            self.last_text = self.screen_text()
            return all(needle in self.last_text for needle in needles)
        try:
            until(there, needles, seconds, every=0.2)
        except TimeOut:
            self.desktop.picture("failure")
            raise AssertionError(f"not on the screen: {needles!r}; there is:\n{self.last_text}") from None
        return self.last_text

    def output(self):
        self.log.seek(0)
        return self.log.read().decode(errors="replace")

    # --- ends
    def ended(self, seconds=15):
        until(lambda: self.process.poll() is not None, "the program's end", seconds)
        return self.process.returncode

    def kill(self):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGKILL)
            self.process.wait()


def hive(home):
    """What a run left behind for the user: {(key below the settings root, name): text}."""
    path = home / "config" / "kestrune" / "user.hive"
    values, key = {}, None
    if path.exists():
        for line in path.read_text(encoding="utf-8").splitlines():
            if line.startswith("["):
                key = line.strip("[]").replace("\\\\", "\\").partition("\\Settings")[2].lstrip("\\")
            elif "=" in line:
                name, _, value = line.partition(" = ")
                values[key, name.strip('"')] = value.strip('"').replace("\\\\", "\\")
    return values


# Heights of the bars above and below the session, in pixels, with room to spare for the frame.
TOP_OF_SESSION = 104
BOTTOM_OF_SESSION = 40


class Journey(unittest.TestCase):
    """One desktop for each class; a fresh home for each test."""

    SIZE = 1280, 900

    @classmethod
    def setUpClass(cls):
        if not PROGRAM or not os.access(PROGRAM, os.X_OK):
            raise AssertionError("KESTRUNE_PROGRAM does not name the program")
        cls.desktop = Desktop(*cls.SIZE)
        cls.addClassCleanup(cls.desktop.close)

    def setUp(self):
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="kestrune-journey-"))
        self.addCleanup(shutil.rmtree, self.home, ignore_errors=True)

    def start(self, *arguments, home=None, **more):
        program = Kestrune(self.desktop, *arguments, home=home or self.home, **more)
        self.addCleanup(program.kill)
        return program

    def session_file(self, name, **keys):
        path = self.home / name
        body = {"TermType": 8, "Device": 6, "Charset": "UTF-8", **keys}
        path.write_text("[Kestrune]\r\n" + "".join(f"{k}={v}\r\n" for k, v in body.items()))
        return path


def main():
    unittest.main(verbosity=2, argv=sys.argv)
