"""SIGKILL at any moment while the program saves: what is on disk is the old or the new content, whole."""

import random
import time

import desktop
from desktop import hive, until


class Killed(desktop.Journey):
    ROUNDS = 12

    def rounds(self, longest, enough=lambda: True):
        """Numbers of rounds, each ending at a moment of its own while the body runs on. A busy machine may get
        nowhere in the time that an idle one takes, so until `enough` there are more rounds, and longer ones."""
        seed = random.Random(1)
        for round_ in range(4 * self.ROUNDS):
            if round_ >= self.ROUNDS and enough():
                return
            yield round_, lambda: time.sleep(seed.random() * longest * (1 + round_ // self.ROUNDS))

    def test_a_session_file_is_whole_whenever_the_program_dies(self):
        file = self.session_file("kept.orcf", HostName="/bin/cat")
        # The default value of NormCols is taken out by a save: the new content is the old without that line.
        new = file.read_bytes() + "".join(f"Unknown{i}=value {i}\r\n" for i in range(1000)).encode()
        old = new.replace(b"TermType", b"NormCols=80\r\nTermType", 1)
        seen = set()
        for round_, wait in self.rounds(0.05, lambda: new in seen):
            file.write_bytes(old)
            with self.start(file) as program:
                program.window()
                program.save()
                wait()  # the moment is the point here, any of them
            content = file.read_bytes()
            with self.subTest(round=round_):
                self.assertTrue(content in (old, new), "neither the old nor the new content")
            seen.add(content)
        self.assertTrue(new in seen, "no round got as far as saving")

    def test_a_layout_is_whole_whenever_the_program_dies(self):
        self.session_file("one.orcf", HostName="/bin/cat")
        layout = self.home / "kept.orly"
        old = (b"[Kestrune Main]\r\nWindowState=0\r\nTop=40\r\nLeft=40\r\nWidth=900\r\nHeight=600\r\nFiles=1\r\n"
               b"Old=True\r\n[File1]\r\nFileName=one.orcf\r\nWidth=400\r\nHeight=300\r\n")
        saved = 0
        for round_, wait in self.rounds(0.05, lambda: saved):
            layout.write_bytes(old)
            with self.start(layout) as program:
                program.window()
                until(lambda: program.geometry(program.main)[2:] == (900, 600), "the layout's size")
                program.save("l")
                wait()
            content = layout.read_bytes()
            with self.subTest(round=round_):
                lines = content.decode("latin-1").splitlines()
                whole = lines[:1] == ["[Kestrune Main]"] and "Files=1" in lines and "FileName=one.orcf" in lines
                self.assertTrue(content == old or (whole and content.endswith(b"\n")), content)
            saved += content != old
        self.assertGreater(saved, 0, "no round got as far as saving")

    def test_the_settings_are_whole_whenever_the_program_dies(self):
        file = self.session_file("any.orcf", HostName="/bin/cat")
        for round_, wait in self.rounds(0.08):
            program = self.start(file)
            program.window()
            program.key("alt+F4")
            wait()
            program.kill()
            path = self.home / "config" / "kestrune" / "user.hive"
            with self.subTest(round=round_):
                if path.exists():
                    lines = path.read_text(encoding="utf-8").split("\n")
                    self.assertEqual(lines[-1], "", "the last line is whole")
                    self.assertTrue(all(l.startswith(("[", '"', "#", ";")) or not l for l in lines), lines)
        program = self.start(file)
        until(lambda: any("any" in t for t in program.titles()), "the next start works as ever")


if __name__ == "__main__":
    desktop.main()
