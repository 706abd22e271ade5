"""Bars, panels and tabs as a person handles them: pulled, floated, renamed, closed; and remembered by the next start."""

import pathlib
import time

import desktop
from desktop import hive, until

SIZE = 1000, 640
MENU = 12  # heights of the middles of the rows, from the top of the window's inside
TOOL_BAR = 42
TABS = 78

STATUS_MENU = """[Menu]
BandCount=2
KEY_1=StatusBar
TYPE_1=8
DOCK_1=2
ENABLED_1=True
VISIBLE_1=True
ITEMCOUNT_1=5
key_2=10001
type_2=10
style_2=4
minwidth_2=60
enabled_2=True
visible_2=True
key_3=10002
type_3=11
style_3=4
minwidth_3=60
enabled_3=True
visible_3=True
key_4=10003
type_4=9
style_4=33
caption_4=spring
enabled_4=True
visible_4=True
key_5=10004
type_5=14
style_5=65
enabled_5=True
visible_5=True
key_6=10005
type_6=13
style_6=4
minwidth_6=120
enabled_6=True
visible_6=True
KEY_7=SessionBar
TYPE_7=16
STYLE_7=2
ENABLED_7=True
VISIBLE_7=True
"""


class BarsByMouse(desktop.Journey):
    def begin(self, *names, host="/bin/cat", **more):
        layout = self.home / "all.orly"
        layout.write_text(f"[Kestrune Main]\r\nChildState=2\r\nFiles={len(names)}\r\n" + "".join(
            f"[File{i}]\r\nFileName={self.session_file(name + '.orcf', HostName=host, CursorType=1).name}\r\n"
            f"WindowState=2\r\nActive={i == 1}\r\n" for i, name in enumerate(names, 1)))
        self.program = self.start(layout, **more)
        window = self.program.window()
        self.program.resize(window, *SIZE)
        until(lambda: self.program.geometry(window)[2:] == SIZE, "the size")
        self.active(names[0])
        self.at(600, 400)
        self.still(0, 0, SIZE[0], SIZE[1] - 30, rest=1)  # all are open; below, a clock may go

    def at(self, x, y, *more):
        self.desktop.run("xdotool", "mousemove", "--window", self.program.main, str(x), str(y), *more)

    def drag(self, *places):
        """Press at the first, go over the others as a hand does, and let go at the last."""
        self.at(*places[0], "mousedown", "1")
        for x, y in places[1:]:
            self.at(x, y)
            time.sleep(0.05)  # a hand is no faster, and the toolkit joins moves that come at once
        self.desktop.run("xdotool", "mouseup", "1")

    def active(self, name):
        until(lambda: self.program.title(self.program.main).endswith(f"[{name}]"), f"{name} in front")

    def window_pixels(self, x=0, y=0, width=SIZE[0], height=SIZE[1]):
        return self.desktop.pixels(self.program.main, f"{width}x{height}+{x}+{y}")

    def still(self, *area, rest=0.7):
        """The pixels of a part of the window, once they have been the same for that many seconds: longer than bars
        and tabs glide, or, with more, than the size of a screen that has changed is shown."""
        seen, since = None, time.monotonic()

        def same():
            nonlocal seen, since
            now = self.window_pixels(*area)
            if now != seen:
                seen, since = now, time.monotonic()
            return time.monotonic() - since > rest
        until(same, "a window at rest", seconds=60, every=0.1)
        return seen

    def places(self):
        return hive(self.home).get(("", "BarPlaces"))

    def leave_and_come_back(self):
        self.program.key("ctrl+shift+q")
        self.yes()
        self.program.ended()
        self.begin("accounts")

    # --- bars
    def test_a_toolbar_docks_on_each_side_and_stays_there(self):
        ways = {"left": [(20, 90), (12, 200), (4, 300)],
                "bottom": [(40, 90), (200, 300), (300, 560), (300, 612)],
                "right": [(40, 90), (500, 300), (900, 300), (990, 300), (996, 300)],
                "into the tabs": [(40, 60), (80, 76), (300, 78)]}
        for side, way in ways.items():
            with self.subTest(side):
                self.setUp()
                self.begin("accounts")
                before = self.still()
                self.drag((5, TOOL_BAR), *way)
                until(self.places, "the place is stored as soon as it is chosen")
                self.at(600, 400)
                after = self.still(rest=3)
                self.desktop.picture("toolbar-" + side.replace(" ", "-"))
                if side != "into the tabs":  # there it stays in a row of its own
                    self.assertNotEqual(after, before)
                self.leave_and_come_back()
                until(lambda: self.still() == after, "the bars are where they were left", seconds=60)
                self.program.kill()

    def test_a_floating_toolbar_is_moved_and_comes_back_where_it_floated(self):
        self.begin("accounts")

        def floating():
            return [w for w in self.program.windows() if w != self.program.main]
        self.drag((5, TOOL_BAR), (40, 80), (200, 200), (300, 300))
        bar = until(floating, "the toolbar has left the window")[0]
        first = self.program.geometry(bar)
        kept = self.places()
        self.desktop.run("xdotool", "mousemove", "--window", bar, "4", "15", "mousedown", "1")
        for way in (40, 90, 140):
            self.desktop.run("xdotool", "mousemove", "--window", bar, "30", "40")
            time.sleep(0.05)
        self.desktop.run("xdotool", "mouseup", "1")
        until(lambda: self.program.geometry(bar)[:2] != first[:2], "it follows the hand")
        until(lambda: self.places() != kept, "stored")
        moved = self.program.geometry(bar)
        self.desktop.picture("toolbar-floating")
        self.leave_and_come_back()
        bar = until(floating, "it floats again")[0]
        until(lambda: self.program.geometry(bar) == moved, "where it was")
        self.assertEqual(self.program.title(self.program.main), "Kestrune 7 - [accounts]")

    # --- panels
    def test_panels_show_locks_and_the_time(self):
        folder = self.home / "data" / "Tavle" / "orlin70"
        folder.mkdir(parents=True)
        (folder / "menu71.ini").write_text(STATUS_MENU.replace("\n", "\r\n"))
        self.begin("accounts")
        line = SIZE[1] - 22
        caps, num, clock = (2, line, 56, 20), (62, line, 56, 20), (SIZE[0] - 118, line, 116, 20)
        off = self.still(*caps), self.still(*num)
        self.desktop.picture("status-panels")
        self.program.key("Caps_Lock")
        until(lambda: self.window_pixels(*caps) != off[0], "the lamp of Caps Lock")
        self.assertEqual(self.window_pixels(*num), off[1])
        self.desktop.picture("status-panels-caps")
        self.program.key("Caps_Lock", "Num_Lock")
        until(lambda: (self.window_pixels(*caps), self.window_pixels(*num)) == (off[0], self.window_pixels(*num)) and
              self.window_pixels(*num) != off[1], "the lamp of Num Lock, and that of Caps Lock off again")
        self.program.key("Num_Lock")
        until(lambda: self.window_pixels(*num) == off[1], "off again")
        now = self.window_pixels(*clock)
        until(lambda: self.window_pixels(*clock) != now, "the clock goes", seconds=70)
        self.assertEqual(self.window_pixels(*caps), off[0])

    # --- tabs
    def test_a_switch_tells_no_host_of_another_size(self):
        told = self.home / "told"
        host = self.home / "host.sh"
        host.write_text(f"#!/bin/bash\ntrap 'echo $$ $(stty size) >>{told}' WINCH\necho $$ >>{told}.all\n"
                        "while :; do sleep 0.1; done\n")
        host.chmod(0o755)
        names = "accounts", "stock", "payroll"
        self.begin(*names, host=host)

        def news():
            """What was told since it was asked last, once nothing more comes."""
            before = None
            while before != (now := told.read_text() if told.exists() else ""):
                before = now
                time.sleep(1)
            told.unlink(missing_ok=True)
            return [line.split(maxsplit=1) for line in now.splitlines()]
        news()
        for x, name in ((160, "stock"), (260, "payroll"), (60, "accounts"), (160, "stock")):
            self.at(x, TABS, "click", "1")
            self.active(name)
        self.assertEqual(news(), [])
        self.program.resize(self.program.main, SIZE[0] - 100, SIZE[1] - 60)
        last = dict(until(news, "all are told of the window's new size"))
        hosts = pathlib.Path(f"{told}.all").read_text().split()
        self.assertEqual((sorted(last), len(set(last.values()))), (sorted(hosts), 1), "the same for all")

    def test_tabs_are_renamed_moved_and_closed(self):
        self.begin("accounts", "stock", "payroll")
        self.at(60, TABS, "click", "--repeat", "2", "--delay", "60", "1")
        self.rename_to("books", "by a double click")
        self.program.key("ctrl+shift+r")
        self.rename_to("sales", "by key")
        self.at(60, TABS, "click", "3")
        time.sleep(0.3)  # a menu takes no keys before it is up
        self.program.key("r")
        self.rename_to("first", "from the context menu")
        self.program.key("ctrl+shift+r")
        self.program.type("nothing")
        self.program.key("Escape")
        self.program.type("typed for the host")
        self.active("first")
        self.program.shows("typed for the host")

        self.drag((30, TABS), (100, TABS), (160, TABS), (230, TABS), (300, TABS), (330, TABS))
        self.still()
        self.at(40, TABS, "click", "1")
        self.active("stock")
        self.desktop.picture("tabs-moved")

        self.program.key("ctrl+Tab")
        self.active("first")
        self.desktop.run("xdotool", "keydown", "ctrl", "key", "Tab", "key", "Tab", "keyup", "ctrl")
        self.active("payroll")

        self.at(40, TABS, "click", "2")  # the middle button, on stock
        self.yes()
        self.active("payroll")
        self.at(40, TABS, "click", "1")
        self.active("payroll")
        self.desktop.picture("tabs-closed")

    def rename_to(self, name, how):
        time.sleep(0.3)
        self.desktop.picture("tab-renamed")
        self.program.type(name)
        self.program.key("Return")
        until(lambda: self.program.title(self.program.main).endswith(f"[{name}]"), how)

    def yes(self):
        """A question whether a session that is on line shall end, answered."""
        def question():
            return "Kestrune" in self.program.titles()
        until(question, "the question")
        self.program.key("Return")
        until(lambda: not question(), "it is answered")


if __name__ == "__main__":
    desktop.main()
