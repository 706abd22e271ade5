"""What a session shows, in a file and on paper: a capture of received data, and prints where no printer is."""

import desktop
from desktop import until

FILE_MENU = (28, 10)


class CaptureAndPrint(desktop.Journey):
    def session(self, **keys):
        program = self.start(self.session_file("session.orcf", HistoryRows=100, **keys))
        program.window()
        program.type("cd; echo re''ady\n")
        program.shows("ready")
        return program

    def choose(self, program, menus_right, letter):
        """An entry of a menu: File is opened with the mouse, the others stand to its right."""
        program.click(*FILE_MENU)
        program.key(*["Right"] * menus_right, letter)

    def capture(self, program):
        self.choose(program, 3, "p")

    def test_a_capture_holds_the_text_that_came_in(self):
        program = self.session()
        (self.home / "a-file-to-list").write_text("x")
        file = self.home / "capture.txt"
        self.capture(program)
        until(lambda: "File Capture" in program.titles(), "the dialog")
        program.type(f"{file}\n")
        until(file.exists, "the capture began")
        until(lambda: "File Capture" not in program.titles(), "the dialog's end")
        program.type("ls --color=always; echo en''d\n")
        program.shows("end")
        self.desktop.picture("capture-on")
        until(lambda: "\nend\n" in file.read_text(), "the capture has it while it runs")
        self.capture(program)
        program.type("echo beh''ind\n")
        program.shows("behind")
        text = file.read_text()
        self.assertIn("a-file-to-list", text)
        self.assertNotIn("\x1b", text, "text only")
        self.assertNotIn("\r", text)
        self.assertNotIn("behind", text)

    def pdfs(self):
        return sorted(self.home.rglob("*.pdf"))

    def words(self, pdf):
        return self.desktop.run("pdftotext", "-layout", str(pdf), "-", check=False)

    def printed(self, number, *words):
        """The words of that many finished PDF files together."""
        def there():
            text = "".join(self.words(pdf) for pdf in self.pdfs())
            return len(self.pdfs()) == number and all(word in text for word in words) and text
        return until(there, f"{number} PDF files with {words}")

    def test_without_a_printer_the_screen_and_the_host_print_to_pdf(self):
        program = self.session()
        program.type("printf '\\033[1mbo''ld\\033[m \\033[4mun''der\\033[m gr\\303\\274n\\n'\n")
        program.shows("bold under grün")
        self.choose(program, 0, "p")
        self.printed(1, "bold under grün", "ready")
        self.desktop.picture("print-screen-told")
        self.desktop.run("pdftoppm", "-r", "60", "-png", str(self.pdfs()[0]), str(desktop.PICTURES / "print-screen"))

        # The host prints through the terminal; the job ends when nothing more comes.
        program.type("printf '\\033[5ipage o''ne\\r\\n\\fpage t''wo\\r\\n\\033[4i'; echo do''ne\n")
        program.shows("done")
        text = self.printed(2, "page one", "page two")
        self.assertIn("\f", text[text.index("page one"):text.index("page two")], "on two sheets")
        self.assertNotIn("page one", program.screen_text())

    def test_printer_on_copies_to_a_file_of_the_users(self):
        spool = self.home / "spool.txt"
        program = self.session(SlavePrinterName=str(spool), PrinterTimeout=1)
        self.choose(program, 0, "t")
        program.type("echo cop''ied\n")
        program.shows("copied")
        until(lambda: spool.exists() and "copied" in spool.read_text(), "the copy")
        self.choose(program, 0, "t")
        self.assertEqual(self.pdfs(), [])


if __name__ == "__main__":
    desktop.main()
