"""SIGKILL at any moment while the program saves: what is on disk is the old or the new content, whole."""

import random
import time

import desktop
from desktop import hive, until


class Killed(desktop.Journey):
    ROUNDS = 12

    def test_a_session_file_is_whole_whenever_the_program_dies(self):
        file = self.session_file("kept.orcf", HostName="/bin/cat")
        unknown = "".join(f"Unknown{i}=value {i}\r\n" for i in range(1000))
        file.write_bytes(file.read_bytes() + unknown.encode())
        seed = random.Random(1)
        for round_ in range(self.ROUNDS):
            program = self.start(file)
            program.window()
            program.key("ctrl+plus")  # a setting changes: there is something to save
            program.save()
            time.sleep(seed.random() * 0.06)  # the moment is the point here, any of them
            program.kill()
            content = file.read_bytes()
            with self.subTest(round=round_):
                self.assertTrue(content.startswith(b"[Kestrune]\r\n"))
                self.assertIn(b"TermType=8\r\n", content)
                self.assertTrue(content.count(b"Unknown") == 1000 and b"Unknown999=value 999\r\n" in content)
        self.assertEqual([p.name for p in self.home.glob("kept*") if p != file], [])

    def test_the_settings_are_whole_whenever_the_program_dies(self):
        file = self.session_file("any.orcf", HostName="/bin/cat")
        seed = random.Random(2)
        for round_ in range(self.ROUNDS):
            program = self.start(file)
            program.window()
            program.key("alt+F4")
            time.sleep(seed.random() * 0.08)
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
