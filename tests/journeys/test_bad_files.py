"""Session files that are broken, odd or out of reach: a clear message, nothing lost, no crash."""

import os

import desktop
from desktop import until

# The last key holds its default: a save takes it out, so that a saved file can be told from an untouched one.
SECTION = "[Kestrune]\r\nTermType=8\r\nDevice=6\r\nHostName=/bin/cat\r\nCharset=UTF-8\r\nNormCols=80\r\n"


class BadFiles(desktop.Journey):
    def opens(self, path):
        program = self.start(path)
        window = program.window()
        until(lambda: path.stem in program.title(window), f"{path.name} opens")
        return program

    def test_files_that_look_odd_open_and_are_saved_with_all_that_was_in_them(self):
        long_line = "Notes=" + "x" * (10 << 20)
        cases = {
            "thousand": (SECTION + "".join(f"Odd{i}=v{i}\r\n" for i in range(1000))).encode(),
            "utf16": ("\ufeff" + SECTION + "Town=Zürich 東京\r\n").encode("utf-16-le"),
            "legacy": (SECTION + "Town=Zürich\r\n").encode("cp1252"),
            "oldmac": (SECTION + "Town=Here\r\n").replace("\r\n", "\r").encode(),
            "longline": (SECTION + long_line + "\r\nAfter=1\r\n").encode(),
        }
        for name, content in cases.items():
            with self.subTest(name):
                path = self.home / (name + ".orcf")
                path.write_bytes(content)
                with self.opens(path) as program:
                    program.save()
                    self.desktop.picture("saved-" + name)
                    until(lambda: path.read_bytes() != content, "the file is saved")
                    self.assert_kept(content, path.read_bytes())
                    self.assertIsNone(program.process.poll())

    def assert_kept(self, before, after):
        """Every line that the program does not know stands as it was, in the same encoding."""
        encoding = "utf-16" if before.startswith(b"\xff\xfe") else "latin-1"
        self.assertEqual(before[:2] == b"\xff\xfe", after[:2] == b"\xff\xfe")
        lines = after.decode(encoding).replace("\r\n", "\r").split("\r")
        for line in before.decode(encoding).replace("\r\n", "\r").split("\r"):
            if line.partition("=")[0].startswith(("Odd", "Town", "Notes", "After")):
                self.assertIn(line, lines)

    def test_a_file_that_cannot_be_written_is_said_and_stays_as_it_was(self):
        folder = self.home / "gone"
        folder.mkdir()
        path = folder / "lost.orcf"
        path.write_text(SECTION)
        program = self.opens(path)
        path.unlink()
        folder.rmdir()
        program.save()
        until(lambda: len(program.windows()) > 1, "a message about the folder")
        self.desktop.picture("folder-gone")
        program.key("Escape")
        self.assertIsNone(program.process.poll())

    def test_broken_content_never_takes_the_program_down(self):
        cases = {
            "empty": b"",
            "cut": SECTION[:30].encode(),
            "zeros": b"\0" * 5000,
            "random": os.urandom(200_000),
            "numbers": b"[Kestrune]\r\nTermType=99999999999999\r\nDevice=-5\r\nHistoryRows=999999999999\r\nNormCols=-3\r\n"
                       b"FontSize=1e300\r\n",
        }
        for name, content in cases.items():
            with self.subTest(name):
                path = self.home / (name + ".orcf")
                path.write_bytes(content)
                with self.start(path) as program:
                    program.window()
                    self.assertIsNone(program.process.poll(), program.output())
                    self.assertEqual(path.read_bytes(), content)


if __name__ == "__main__":
    desktop.main()
