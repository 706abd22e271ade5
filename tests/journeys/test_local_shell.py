"""A local shell as a person uses it: full-screen programs, typing, resizing, the end of the session."""

import desktop
from desktop import until

EXAMPLE = desktop.SOURCE / "examples" / "Local Shell.orcf"


class LocalShell(desktop.Journey):
    def prompt(self, program):
        """Waits until a command typed into the session has run."""
        mark = self.home / "ready"
        program.type(f"clear; touch {mark}\n")
        until(mark.exists, "the shell ran a command")

    def test_typed_commands_run_and_their_output_is_on_the_screen(self):
        program = self.start(EXAMPLE)
        program.window()
        self.prompt(program)
        program.type("echo one$((1+1))three\n")
        program.shows("one2three")

    def test_vim_takes_keys_draws_and_follows_the_window(self):
        program = self.start(EXAMPLE)
        window = program.window()
        self.prompt(program)
        text, sizes = self.home / "text", self.home / "sizes"
        program.type(f"vim -u NONE -N {text}\n")
        until(lambda: "~" in program.screen_text(), "vim's empty lines")
        program.type("ifirst line\nsecond line")
        program.key("Escape")
        program.shows("first line", "second line")
        program.type(f":call writefile([&columns, &lines], '{sizes}')\n")
        before = until(lambda: sizes.exists() and sizes.read_text().split(), "vim's idea of its size")
        sizes.unlink()
        x, y, width, height = program.geometry(window)
        program.resize(window, width - 240, height - 180)

        def smaller():
            sizes.unlink(missing_ok=True)
            program.type(f":call writefile([&columns, &lines], '{sizes}')\n")
            after = until(lambda: sizes.exists() and sizes.read_text().split(), "vim's answer")
            return after if after != before else None
        after = until(smaller, "vim follows the window", every=0.3)
        self.assertLess(int(after[0]), int(before[0]))
        self.assertLess(int(after[1]), int(before[1]))
        self.desktop.picture("vim")
        program.type(":wq\n")
        until(text.exists, "vim wrote the file")
        self.assertEqual(text.read_text(), "first line\nsecond line\n")

    def test_mc_and_htop_draw_their_screens(self):
        program = self.start(EXAMPLE)
        program.window()
        self.prompt(program)
        (self.home / "a-file-to-see").write_text("x")
        program.type(f"mc {self.home} {self.home}\n")
        # Lines are lines, whatever character set drew them.
        program.shows("a-file-to-see", "Left", "Options", "Right", "1Help", "10Quit", "│")
        self.desktop.picture("mc")
        program.key("F10")
        self.prompt(program)
        program.type("htop\n")
        program.shows("PID", "CPU%")
        self.desktop.picture("htop")
        program.type("q")
        self.prompt(program)

    def test_the_exit_code_of_the_program_is_shown_and_the_window_stays(self):
        program = self.start(self.session_file("once.orcf", HostName="/bin/sh -c 'echo before; exit 7'"))
        program.window()
        program.shows("exit code 7")
        self.assertIn("before", program.last_text)
        self.assertIsNone(program.process.poll())

    def test_auto_close_ends_the_session_with_its_program(self):
        program = self.start(self.session_file("auto.orcf", HostName="/bin/sh -c 'sleep 2'", AutoClose="True"))
        window = program.window()
        until(lambda: "auto" in program.title(window), "the session's name in the title")
        until(lambda: "auto" not in program.title(window), "the session's end")
        self.assertIsNone(program.process.poll())

    def test_a_program_in_the_session_may_run_on_every_processor(self):
        mask = self.home / "mask"
        program = self.start(self.session_file("mask.orcf", HostName=f"/bin/sh -c 'nproc > {mask}; sleep 60'"))
        program.window()
        until(lambda: mask.exists() and mask.read_text(), "the program's answer")
        self.assertEqual(mask.read_text(), self.desktop.run("nproc"))


if __name__ == "__main__":
    desktop.main()
