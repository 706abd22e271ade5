"""A serial port and a modem behind one, both played on pseudo-terminals: work, pull the cable out and put it back, call
and be called."""

import os
import select
import threading
import tty

import desktop
from desktop import until


class FarEnd:
    """The other end of a serial cable, with something at it that answers what it hears."""

    def __init__(self, link, answer):
        self.link, self.answer = link, answer
        self.far, self.near = os.openpty()
        tty.setraw(self.far)
        link.symlink_to(os.ttyname(self.near))
        self.heard = b""
        self.stop_read, self.stop = os.pipe()
        self.thread = threading.Thread(target=self.work, daemon=True)
        self.thread.start()

    def work(self):
        while True:
            ready, _, _ = select.select([self.far, self.stop_read], [], [])
            if self.stop_read in ready:
                return
            self.heard += os.read(self.far, 4096)
            self.answer(self)

    def says(self, text):
        os.write(self.far, text.encode())

    def unplug(self):
        if self.far < 0:
            return
        self.link.unlink()
        os.write(self.stop, b"x")
        self.thread.join()
        for descriptor in (self.far, self.near, self.stop_read, self.stop):
            os.close(descriptor)
        self.far = -1


def device(end):
    """A thing with a line editor: echoes, and answers each line."""
    while b"\r" in end.heard:
        line, _, end.heard = end.heard.partition(b"\r")
        end.says(f"{line.decode()}\r\ngot {line.decode()}\r\n")


class Modem(FarEnd):
    def __init__(self, link):
        self.online = False
        super().__init__(link, Modem.hear)

    def hear(self):
        if self.online and self.heard.endswith(b"+++"):
            self.online, self.heard = False, b""
            self.says("\r\nOK\r\n")
        while b"\r" in self.heard:
            line, _, self.heard = self.heard.partition(b"\r")
            text = line.decode()
            if self.online:
                self.says(f"host heard {text}\r\n")
                continue
            answer = {"ATDT1": "BUSY", "ATDT2": "CONNECT 9600", "ATA": "CONNECT 2400"}.get(text, "OK")
            self.online = answer.startswith("CONNECT")
            self.says(f"{text}\r\r\n{answer}\r\n")


class Serial(desktop.Journey):
    def far_end(self, kind, *more):
        end = kind(self.home / "by-id", *more)
        self.addCleanup(end.unplug)
        return end

    def test_work_pull_the_adapter_out_and_put_it_back(self):
        end = self.far_end(FarEnd, device)
        program = self.start(self.session_file("port.orcf", Device=1, HostName=str(end.link), Baud=9))
        program.window()
        until(lambda: program.type("hello\n") or "got hello" in program.screen_text(), "the device's answer", every=0.5)
        self.desktop.picture("serial")
        end.unplug()
        # Nothing covers the screen: the port is waited for, and the status line says so.
        self.far_end(FarEnd, device)
        until(lambda: program.type("again\n") or "got again" in program.screen_text(), "the port is back", every=0.5)
        self.assertIn("got hello", program.screen_text())

    def test_settings_that_lead_nowhere_are_explained(self):
        program = self.start(self.session_file("none.orcf", Device=1, HostName="/dev/no-such-port"))
        program.window()
        program.shows("Unable to open /dev/no-such-port: there is no such port", under_panel=True)
        self.assertIsNone(program.process.poll())

    def test_a_call_is_made_and_another_answered(self):
        modem = self.far_end(Modem)
        program = self.start(self.session_file("modem.orcf", Device=4, HostName=str(modem.link), AutoAnswer="True"))
        program.window()
        program.shows("ATE1V1Q0S0=0", "OK")
        program.type("ATDT1\n")
        program.shows("BUSY")
        program.type("ATDT2\n")
        program.shows("CONNECT 9600")
        program.type("hello\n")
        program.shows("host heard hello")
        self.desktop.picture("modem")
        modem.online = False
        modem.says("\r\nNO CARRIER\r\n")
        program.shows("[The call has ended]")
        modem.says("\r\nRING\r\n")
        program.shows("CONNECT 2400")
        self.desktop.picture("modem-answered")


if __name__ == "__main__":
    desktop.main()
