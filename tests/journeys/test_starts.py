"""What each start does, and what it leaves behind."""

import signal
import subprocess

import desktop
from desktop import hive, until


class Starts(desktop.Journey):
    def finish(self, program):
        window = program.window()
        self.desktop.run("xdotool", "windowactivate", "--sync", window)
        program.key("alt+F4")

        def gone_or_asked():
            if program.process.poll() is not None:
                return True
            if len(program.windows()) > 1:
                program.key("alt+y")
            return False
        until(gone_or_asked, "the program's end", every=0.4)
        self.assertEqual(program.process.returncode, 0, program.output())
        return hive(self.home)

    def recent(self, values):
        return [values[key] for key in sorted(values) if key[0] == "RecentFiles"]

    def test_a_session_file_opens_and_is_remembered_with_the_window(self):
        file = self.session_file("host a.orcf", HostName="/bin/cat")
        program = self.start(file)
        window = program.window()
        until(lambda: "host a" in program.title(window), "the session in the title")
        values = self.finish(program)
        self.assertEqual(len(self.recent(values)), 1)
        self.assertIn("host a.orcf", self.recent(values)[0])
        for name in ("MainLeft", "MainTop", "MainWidth", "MainHeight", "MainWindowState"):
            self.assertIn(("", name), values)

    def test_the_window_comes_back_where_it_was(self):
        file = self.session_file("place.orcf", HostName="/bin/cat")
        program = self.start(file)
        window = program.window()
        program.resize(window, 800, 500)
        self.desktop.run("xdotool", "windowmove", window, "150", "120")
        until(lambda: program.geometry(window)[2:] == (800, 500), "the new size")
        before = program.geometry(window)
        self.finish(program)
        program = self.start(file)
        window = program.window()
        until(lambda: program.geometry(window) == before, f"the place {before}, not {program.geometry(window)}")

    def test_a_wish_of_the_system_to_end_is_heeded_and_nothing_is_lost(self):
        file = self.session_file("shell.orcf", HostName="")
        for wish in (signal.SIGTERM, signal.SIGHUP, signal.SIGINT):
            with self.subTest(wish.name):
                program = self.start(file)
                window = program.window()
                width = 700 + int(wish)
                program.resize(window, width, 500)
                until(lambda: program.geometry(window)[2:] == (width, 500), "the new size")
                program.type("echo mark$((1+1))\n")
                program.shows("mark2")  # by now the program itself knows its size
                program.process.send_signal(wish)
                self.assertEqual(program.ended(), 0)
                program = self.start(file)
                window = program.window()
                until(lambda: program.geometry(window)[2:] == (width, 500), "the size of last time")
                self.finish(program)

    def test_a_layout_opens_both_sessions(self):
        self.session_file("one.orcf", HostName="/bin/cat")
        self.session_file("two.orcf", HostName="/bin/cat")
        layout = self.home / "both.orly"
        layout.write_text("[Kestrune Main]\r\nWindowState=0\r\nChildState=0\r\nTop=40\r\nLeft=60\r\nHeight=600\r\n"
                          "Width=900\r\nFiles=2\r\n"
                          "[File1]\r\nFileName=one.orcf\r\nWindowState=0\r\nTop=0\r\nLeft=0\r\nWidth=400\r\nHeight=300\r\n"
                          "Active=False\r\n"
                          "[File2]\r\nFileName=two.orcf\r\nWindowState=0\r\nTop=60\r\nLeft=80\r\nWidth=420\r\nHeight=320\r\n"
                          "Active=True\r\n")
        program = self.start(layout)
        window = program.window()
        children = until(lambda: (found := self.cats(program)) and len(found) == 2 and found, "both programs run")
        self.assertEqual(len(children), 2)
        until(lambda: program.geometry(window)[2:] == (900, 600), "the layout's size")
        self.desktop.picture("layout")
        values = self.finish(program)
        self.assertIn("both.orly", " ".join(self.recent(values)))

    def cats(self, program):
        found = subprocess.run(["pgrep", "-P", str(program.process.pid), "-x", "cat"], stdout=subprocess.PIPE)
        return found.stdout.split()

    def test_what_cannot_be_opened_leaves_an_empty_window_and_no_trace(self):
        script = self.home / "hello.orsc"
        script.write_text("' a script\r\nSub Main\r\nEnd Sub\r\n")
        unknown = self.home / "picture.png"
        unknown.write_bytes(bytes(range(256)) * 8)
        for name, argument in (("a script", script), ("an unknown file", unknown),
                               ("a missing file", self.home / "missing.orcf"), ("no file", None)):
            with self.subTest(name):
                program = self.start(*([argument] if argument else []))
                program.window()
                self.assertEqual(self.cats(program), [])
                self.desktop.picture("start-" + name.replace(" ", "-"))
                self.assertEqual(self.recent(self.finish(program)), [])

    def test_questions_that_need_no_display(self):
        env = {key: value for key, value in self.desktop.env.items() if key != "DISPLAY"}
        for arguments, code, words in ((["--version"], 0, "Kestrune"), (["--help"], 0, "Usage"),
                                       (["--no-such-thing"], 2, "--no-such-thing")):
            with self.subTest(arguments):
                done = subprocess.run([desktop.PROGRAM, *arguments], env=env, stdout=subprocess.PIPE,
                                      stderr=subprocess.STDOUT, timeout=20)
                self.assertEqual(done.returncode, code)
                self.assertIn(words, done.stdout.decode())

    def test_a_name_with_blanks_a_dash_and_other_letters(self):
        file = self.session_file("-ü 日本 b.orcf", HostName="/bin/cat")
        program = self.start("--", file.name, cwd=self.home)
        window = program.window()
        until(lambda: "-ü 日本 b" in program.title(window), "the session's name in the title")


if __name__ == "__main__":
    desktop.main()
