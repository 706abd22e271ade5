"""Function keys with texts, their bar on each side of the screen, and clicks that a mouse table answers."""

import desktop
from desktop import until

BELOW, ABOVE, LEFT, RIGHT = range(4)


class FunctionKeys(desktop.Journey):
    def settings(self, **values):
        """What the user has chosen before: values of the global settings."""
        folder = self.home / "config" / "kestrune"
        folder.mkdir(parents=True, exist_ok=True)
        lines = "".join(f'"{name}" = "{value}"\n' for name, value in values.items())
        (folder / "user.hive").write_text("[Software\\Tavle\\orlin70\\Settings]\n" + lines)

    def shell(self, **keys):
        """A shell at its prompt whose F2 runs a command, seen by the file that it makes."""
        self.mark = self.home / "mark"
        start = self.home / "start"
        start.write_text(f"PS1='$ '; clear; touch {self.mark}\n")
        keys = {"FKey113": f"touch {self.mark}^M", "FKey10113": "Leave a mark", "FKey10116": "Save", "FKey115": "top^M",
                "HostName": f"/bin/bash --rcfile {start}", **keys}
        program = self.start(self.session_file("keys.orcf", **keys))
        program.window()
        self.marked()
        return program

    def marked(self):
        until(self.mark.exists, "the command of the key ran")
        self.mark.unlink()

    def test_the_bar_stands_on_any_side_and_its_buttons_type(self):
        light = {"Palette16": 0x262626, "Palette17": 0xF8F8F8}
        for side, style, colours in ((BELOW, 0, {}), (ABOVE, 1, light), (LEFT, 2, light), (RIGHT, 0, {})):
            with self.subTest(side=side):
                self.settings(FuncBar=1, FuncBarPos=side, FuncBarStyle=style)
                program = self.shell(**colours)
                self.desktop.picture(f"function-bar-{side}")
                _, _, width, height = program.geometry(program.main)
                # The second of twelve buttons, behind the one for the bank.
                x, y = {BELOW: (int(width * 0.17), height - 44), ABOVE: (int(width * 0.17), 112),
                        LEFT: (60, int(height * 0.26)), RIGHT: (width - 80, int(height * 0.26))}[side]
                program.click(x, y)
                self.marked()
                program.kill()

    def test_the_view_menu_shows_and_hides_it_and_remembers(self):
        program = self.shell()
        _, _, width, height = program.geometry(program.main)
        program.click(110, 10)  # View
        self.desktop.picture("view-menu")
        program.key("f")
        program.click(int(width * 0.17), height - 44)
        self.marked()
        self.assertEqual(desktop.hive(self.home)["", "FuncBar"], "1")

    def test_keys_with_a_text_run_it_and_others_go_to_the_host(self):
        program = self.shell()
        program.key("F2")
        self.marked()
        program.type("cat -v\n")
        program.key("F3", "Return")
        program.shows("^[OR")

    def test_text_on_the_screen_answers_clicks_by_the_mouse_table(self):
        table = self.home / "menu.mouse"
        table.write_text("; choices of a menu\n1\t(\\d+)\\. \\w+\techo chosen-$1^M\n")
        program = self.shell(CustomMouseTable=str(table))
        program.type("clear; for i in $(seq 40); do echo $i. entry $i. entry $i. entry; done\n")
        program.shows("40. entry")
        _, _, width, height = program.geometry(program.main)
        program.click(40, height // 2)
        program.shows("chosen-")
        self.desktop.picture("mouse-table")


if __name__ == "__main__":
    desktop.main()
