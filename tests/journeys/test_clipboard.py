"""Copies as other programs get them, pastes as the host gets them, and a picture behind the text."""

import subprocess

import desktop
from desktop import until


class ClipboardAndPicture(desktop.Journey):
    def shell(self, **keys):
        """A shell at its prompt."""
        mark, start = self.home / "mark", self.home / "start"
        start.write_text(f"PS1='$ '; clear; touch {mark}\n")
        program = self.start(self.session_file("any.orcf", HostName=f"/bin/bash --rcfile {start}", **keys))
        program.window()
        until(mark.exists, "the prompt")
        return program

    def clipboard(self, kind):
        return self.desktop.run("timeout", "5", "xclip", "-o", "-selection", "clipboard", "-t", kind, check=False)

    def put(self, text):
        subprocess.run(["xclip", "-selection", "clipboard"], input=text.encode(), env=self.desktop.env, check=True,
                       timeout=20)

    def test_a_copy_is_text_and_has_its_colours_for_word_processors(self):
        program = self.shell()
        program.type("clear; printf '\\033[1;31mred\\033[0m & <plain>\\n'\n")
        program.shows("red & <plain>")
        for _ in range(3):  # all of the first line
            program.click(12, desktop.TOP_OF_SESSION + 4)
        self.desktop.picture("selected")
        program.key("ctrl+shift+c")
        text = until(lambda: self.clipboard("UTF8_STRING"), "a copy")
        self.assertIn("plain", text)
        self.assertIn("red</span>", self.clipboard("text/html"))
        self.assertIn("&lt;plain&gt;", self.clipboard("text/html"))
        self.assertIn("\\b red}", self.clipboard("text/rtf"))

    def test_pasted_line_ends_are_those_of_the_settings(self):
        program = self.shell(PasteEOLMode=3, PasteEOLChar=ord("|"), PasteEOFMode=3, PasteEOFChar=ord("!"),
                             PasteOptions=1)
        self.put("echo one\ntwo\nthree")
        program.type("bind 'set enable-bracketed-paste off'; clear\n")
        program.key("shift+Insert")
        program.shows("echo one|two|three!")

    def test_the_host_writes_the_clipboard_only_where_that_is_allowed(self):
        for allowed in (0, -1):
            with self.subTest(allowed=allowed):
                self.put("mine")
                program = self.shell(HostSetsClipboard=allowed)
                program.type("printf '\\033]52;c;aGVsbG8=\\a'; echo do''ne\n")
                program.shows("done")
                self.desktop.picture(f"host-clipboard{allowed}")
                self.assertEqual(self.clipboard("UTF8_STRING"), "hello" if allowed else "mine")
                program.kill()

    def test_a_picture_lies_behind_the_text(self):
        picture = self.home / "behind.png"
        self.desktop.run("convert", "-size", "600x400", "gradient:#204080-#802040", str(picture))
        program = self.shell(BackgroundPictureFile=picture, BackgroundPictureMode=3, BackgroundTransparency=40)
        program.type("ls -l --color / | head -20\n")
        x, y, width, height = program.geometry(program.main)

        def colour_at(share):
            shot = self.desktop.picture("backdrop")
            place = f"{x + width - 60},{y + int(height * share)}"
            out = self.desktop.run("convert", str(shot), "-format", "%[fx:int(255*p{" + place + "}.r)] %[fx:int(255*p{" +
                                   place + "}.b)]", "info:")
            return [int(part) for part in out.split()]
        above = until(lambda: colour_at(0.3)[1] > colour_at(0.3)[0] and colour_at(0.3), "blue above")
        below = colour_at(0.85)
        self.assertGreater(below[0], above[0])
        self.assertLess(below[1], above[1])


if __name__ == "__main__":
    desktop.main()
