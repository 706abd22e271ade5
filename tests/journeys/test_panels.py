"""What a line asks or tells over its session's terminal: each panel in the real program, light and dark, at normal and
double scale, as pictures for people; and which button has the keyboard."""

import os
import socket
import subprocess
import time

import desktop
from desktop import until
from test_serial import FarEnd

USER = "tkey" if os.getuid() == 0 else os.environ["USER"]
OTHER_KEY = "AAAAC3NzaC1lZDI1NTE5AAAAIAABAgMEBQYHCAkKCwwNDg8QERITFBUWFxgZGhscHR4f"
LOOKS = (("light", 1), ("light", 2), ("dark", 1), ("dark", 2))


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class Panels(desktop.Journey):
    SIZE = 2200, 1600

    def setUp(self):
        super().setUp()
        self.home.chmod(0o755)
        self.ssh_port, self.tls_port = free_port(), free_port()
        self.folder = self.home / "sshd"
        self.serve(self.ssh_port, desktop.SOURCE / "tests/partners/sshd.sh", self.folder, str(self.ssh_port))
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
                        "-nodes", "-subj", "/CN=localhost", "-days", "30", "-keyout", self.home / "tls.key", "-out",
                        self.home / "tls.pem"], check=True, stderr=subprocess.DEVNULL)
        self.serve(self.tls_port, "socat", f"OPENSSL-LISTEN:{self.tls_port},bind=127.0.0.1,reuseaddr,fork,verify=0,"
                   f"cert={self.home}/tls.pem,key={self.home}/tls.key", "EXEC:cat")

    def serve(self, port, *command):
        server = subprocess.Popen(["timeout", "-k", "1", "300", *command], stdin=subprocess.DEVNULL,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

        def end():
            server.terminate()  # timeout passes it on to all of its group
            server.wait()
        self.addCleanup(end)

        def listening():
            with socket.socket() as probe:
                return probe.connect_ex(("127.0.0.1", port)) == 0
        until(listening, command[0])

    def shown(self, name, look, known="", wait=1.5, **session):
        """The program with this panel up, pictured."""
        theme, scale = look
        home = self.home / f"{name}-{theme}-{scale}"
        (home / ".ssh").mkdir(parents=True, mode=0o700)
        (home / "config").mkdir()
        (home / ".ssh/known_hosts").write_text(known)
        extra = {"QT_SCALE_FACTOR": str(scale)}
        if theme == "dark":
            (home / "config/kdeglobals").write_text(desktop.DARK)
            extra.update(XDG_CURRENT_DESKTOP="KDE", KDE_SESSION_VERSION="5")
        program = self.start(self.session_file("host.orcf", **session), home=home, extra_env=extra)
        program.window()
        time.sleep(wait)
        self.desktop.picture(f"panel-{name}-{theme}-{scale}")
        return program

    def ssh(self, **more):
        return {"Device": 5, "HostName": f"{USER}@127.0.0.1", "HostPort": self.ssh_port,
                "SSHKey": self.folder / "keys/user_ed25519", **more}

    def test_a_host_that_is_new_or_another_is_refused_by_return(self):
        name = f"[127.0.0.1]:{self.ssh_port} ssh-ed25519 "
        for look in LOOKS:
            for panel, known in (("new-host", ""), ("changed-host", name + OTHER_KEY + "\n")):
                program = self.shown(panel, look, known, **self.ssh())
                program.key("Return")  # the focus is on Cancel
                time.sleep(0.5)
                self.assertEqual((program.home / ".ssh/known_hosts").read_text(), known)
                self.assertIsNone(program.process.poll())
                program.kill()

    def test_secrets_and_certificates(self):
        for look in LOOKS:
            for panel, session in (
                    ("password", self.ssh(HostName="tpass@127.0.0.1", HostKeyValidation=3, SSHKey="", SSHAuth=1)),
                    ("passphrase", self.ssh(HostKeyValidation=3, SSHKey=self.folder / "keys/user_rsa_pp")),
                    ("certificate", {"Device": 7, "HostName": "localhost", "HostPort": self.tls_port})):
                program = self.shown(panel, look, **session)
                program.key("Escape")
                time.sleep(0.3)
                self.assertIsNone(program.process.poll())
                program.kill()

    def test_a_lost_connection_is_explained_and_closed_by_its_keys(self):
        for look in LOOKS:
            program = self.shown("reconnect", look, Device=3, HostName="127.0.0.1", HostPort=free_port())
            program.key("alt+i")
            time.sleep(0.5)
            self.desktop.picture(f"panel-info-{look[0]}-{look[1]}")
            program.key("Escape")  # the advice
            self.assertIn("host", program.title(program.main))
            program.key("c")
            until(lambda: "host" not in program.title(program.main), "the session is closed")
            program.kill()

    def test_a_modem_that_does_not_answer_is_told_and_tried_again(self):
        for look in LOOKS:
            modem = FarEnd(self.home / "modem", lambda end: None)
            self.addCleanup(modem.unplug)
            program = self.shown("modem", look, wait=13, Device=4, HostName=modem.link)  # three tries of 3 s
            self.assertEqual(modem.heard.count(b"ATZ"), 3)
            program.key("r")
            until(lambda: modem.heard.count(b"ATZ") > 3, "another try")
            program.kill()
            modem.unplug()


if __name__ == "__main__":
    desktop.main()
