"""Menus and bars as they look: every menu, each bar, with no session and with three, light and dark, at one and two
pixels to a unit. The pictures are for a person; what is asserted is that each of them shows something of its own."""

import desktop
from desktop import hive, until

MENUS = ("file", "help", "window", "multivalue", "tools", "view", "edit")  # as the Left key goes through them


class Bars(desktop.Journey):
    SIZE = 2200, 1500

    def look(self, name, other_than=None, seconds=20):
        """A picture, once two looks in a row are the same and not what was seen before: nothing moves any more."""
        seen = []

        def still():
            seen.append(self.desktop.pixels())
            return len(seen) > 1 and seen[-1] == seen[-2] and seen[-1] != other_than
        try:
            until(still, f"{name} at rest", seconds, every=0.1)
        finally:
            self.desktop.picture(name)
        return seen[-1]

    def begin(self, scale, dark, sessions):
        (self.home / "config").mkdir(exist_ok=True)
        env = {"QT_SCALE_FACTOR": str(scale)}
        if dark:
            (self.home / "config" / "kdeglobals").write_text(desktop.DARK)
            env.update(XDG_CURRENT_DESKTOP="KDE", KDE_SESSION_VERSION="5", KDE_FULL_SESSION="true")
        names = ("accounts", "stock", "payroll") if sessions else ()
        opened = []
        if names:
            layout = self.home / "three.orly"
            layout.write_text(f"[Kestrune Main]\r\nChildState=2\r\nFiles={len(names)}\r\n" + "".join(
                f"[File{i}]\r\nFileName={self.session_file(name + '.orcf', HostName='/bin/cat', CursorType=1).name}\r\n"
                f"WindowState=2\r\nActive={i == 1}\r\n" for i, name in enumerate(names, 1)))
            opened = [layout]
        program = self.start(*opened, extra_env=env)
        window = program.window()
        program.resize(window, 1000 * scale, 640 * scale)
        until(lambda: program.geometry(window)[2:] == (1000 * scale, 640 * scale), "the size")
        if names:
            until(lambda: names[0] in program.title(window), "the sessions")
        return program

    def click(self, program, x, y, scale, button=1):
        program.click(x * scale, y * scale, button)

    def test_every_menu_and_bar(self):
        for scale in (1, 2):
            for dark in (False, True):
                for sessions in (False, True):
                    name = f"bars-{scale}-{'dark' if dark else 'light'}-{'three' if sessions else 'none'}"
                    with self.subTest(name):
                        self.setUp()
                        program = self.begin(scale, dark, sessions)
                        try:
                            self.walk(program, name, scale, [m for m in MENUS if sessions or m != "multivalue"])
                        finally:
                            program.kill()

    def walk(self, program, name, scale, menus):
        """Opens the first menu and goes on with the arrow key that opens no sub-menu; a menu that is off is passed."""
        seen = [self.look(name)]
        self.click(program, 28, 10, scale)
        for menu in menus:
            seen.append(self.look(f"{name}-{menu}", other_than=seen[-1]))
            program.key("Left")
        self.assertEqual(len(set(seen)), len(menus) + 1, "each menu shows something of its own")
        program.key("Escape")

    def test_a_toolbar_that_was_pulled_to_the_left_stays_there(self):
        file = self.session_file("accounts.orcf", HostName="/bin/cat")
        program = self.start(file)
        window = program.window()
        program.resize(window, 1000, 640)
        until(lambda: program.geometry(window)[2:] == (1000, 640), "the size")
        before = self.look("bars-drag-before")
        self.desktop.run("xdotool", "mousemove", "--window", window, "5", "40", "mousedown", "1")
        for x, y in ((20, 80), (12, 200), (6, 260), (4, 300)):
            self.desktop.run("xdotool", "mousemove", "--window", window, str(x), str(y))
        self.look("bars-dragging")
        self.desktop.run("xdotool", "mouseup", "1")
        until(lambda: hive(self.home).get(("", "BarPlaces")), "the place is stored as soon as it is chosen")
        self.desktop.run("xdotool", "mousemove", "--window", window, "600", "400")
        self.look("bars-drag-after", other_than=before)
        program.kill()  # however it ends
        program = self.start(file)
        window = program.window()
        program.resize(window, 1000, 640)
        until(lambda: program.geometry(window)[2:] == (1000, 640), "the size")
        self.desktop.run("xdotool", "mousemove", "--window", window, "600", "400")
        self.look("bars-drag-again")
        left = [self.desktop.run("convert", str(desktop.PICTURES / f"bars-drag-{when}.png"), "-trim", "+repage", "-crop", "30x420+0+50",
                                 "-format", "%#", "info:") for when in ("before", "after", "again")]
        self.assertEqual(left[1], left[2], "the left side looks as it was left")
        self.assertNotEqual(left[0], left[1])


if __name__ == "__main__":
    desktop.main()
