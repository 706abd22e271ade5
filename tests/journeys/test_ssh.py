"""Sessions to a real SSH host on loopback: a host that nobody has seen, passwords, work, the host goes away and comes
back with another key. The server has users and keys of its own; with a password only where it runs as root."""

import os
import re
import signal
import socket
import subprocess
import time

import desktop
from desktop import until

IS_ROOT = os.getuid() == 0


class Ssh(desktop.Journey):
    def setUp(self):
        super().setUp()
        self.home.chmod(0o755)  # the server looks for keys as the user who logs in
        self.folder = self.home / "sshd"
        self.log = self.home / "sshd.log"
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            self.port = probe.getsockname()[1]
        self.serve()

    def serve(self):
        self.log.write_text("")
        with self.log.open("w") as log:
            self.server = subprocess.Popen([desktop.SOURCE / "tests/partners/sshd.sh", self.folder, str(self.port)],
                                           stdin=subprocess.DEVNULL, stdout=log, stderr=log, start_new_session=True)
        self.addCleanup(self.end_server)
        self.logged("Server listening")

    def end_server(self):
        if self.server.poll() is None:
            self.server.send_signal(signal.SIGKILL)
            self.server.wait()

    def logged(self, text, seconds=20):
        until(lambda: text in self.log.read_text(), f"{text} in the server's log", seconds)

    def known_hosts(self):
        path = self.home / ".ssh/known_hosts"
        return path.read_text() if path.exists() else ""

    def answer(self, press, done, what):
        """Answers a panel: again while nothing has come of it, since it may take a moment to come up."""
        def answered():
            press()
            try:
                until(done, what, 3)
                return True
            except desktop.TimeOut:
                return False
        until(answered, what)

    def log_in_by_password(self, password, outcome):
        self.answer(lambda: self.program.type(password + "\n"), lambda: outcome in self.log.read_text(), outcome)

    def test_a_new_host_work_and_the_host_comes_back_with_another_key(self):
        user = "tkey" if IS_ROOT else os.environ["USER"]
        self.program = self.start(self.session_file(
            "host.orcf", Device=5, HostName=f"{user}@127.0.0.1", HostPort=self.port,
            SSHKey=self.folder / "keys/user_ed25519"))
        window = self.program.window()
        self.logged("Connection from")
        time.sleep(1)
        self.desktop.picture("ssh-new-host")
        self.answer(lambda: self.program.key("alt+u"),
                    lambda: f"[127.0.0.1]:{self.port} ssh-ed25519" in self.known_hosts(), "the host is known")
        self.program.shows("$")
        self.program.type("vim -u NONE -N\n")
        self.program.shows("VIM", "~")
        self.program.type("ityped in an editor")
        self.program.shows("typed in an editor")
        _, _, width, height = self.program.geometry(window)
        self.program.resize(window, width - 200, height - 150)
        self.program.shows("INSERT", "typed in an editor")
        self.desktop.picture("ssh-editor")
        self.program.key("Escape")
        self.program.type(":q!\nclear; echo on $TERM\n")
        self.program.shows("on vt220")

        self.end_server()
        time.sleep(1)
        self.desktop.picture("ssh-lost")
        for path in (self.folder / "keys").glob("host_*"):
            path.unlink()
        before = self.known_hosts()
        self.serve()
        self.program.key("r")  # the reconnect panel's own key
        self.logged("Connection from")
        time.sleep(1)
        self.desktop.picture("ssh-changed-host")
        self.program.key("Return")  # the focus is on Cancel: nothing is typed into a host that may be another
        self.logged("[preauth]")
        self.assertEqual(self.known_hosts(), before)
        self.program.shows("on vt220", under_panel=True)  # what was on the screen stays
        self.assertIsNone(self.program.process.poll())

    if IS_ROOT:
        def test_a_password_is_asked_for_again_when_it_is_wrong(self):
            self.program = self.start(self.session_file("host.orcf", Device=5, HostName="tpass@127.0.0.1",
                                                        HostPort=self.port, HostKeyValidation=3))
            self.program.window()
            self.log_in_by_password("wrong", "Failed")
            time.sleep(1)
            self.desktop.picture("ssh-password")
            self.log_in_by_password("secret 1", "Accepted")
            self.program.shows("$")
            self.program.type("stty size; exit 3\n")
            shown = self.program.shows("exit code 3", under_panel=True)
            self.assertTrue(re.search(r"^\d+ \d+\s*$", shown, re.M))
            self.assertNotIn("secret", shown)
            self.assertNotIn("secret", (self.home / "host.orcf").read_text())

        def password_store(self):
            """A session bus of this test's with the desktop's password store on it, open; its address."""
            bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--print-address"],
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
            self.addCleanup(bus.wait)
            self.addCleanup(bus.kill)
            address = bus.stdout.readline().decode().strip()
            bus.stdout.close()
            folder = self.home / "store"
            folder.mkdir()
            env = dict(os.environ, DBUS_SESSION_BUS_ADDRESS=address, HOME=str(folder), XDG_DATA_HOME=str(folder),
                       XDG_RUNTIME_DIR=str(folder))
            store = subprocess.Popen(["gnome-keyring-daemon", "--foreground", "--unlock", "--components=secrets"],
                                     env=env, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL,
                                     stderr=subprocess.DEVNULL)
            self.addCleanup(store.wait)
            self.addCleanup(store.kill)
            store.stdin.write(b"login password")
            store.stdin.close()
            until(lambda: any(folder.rglob("login.keyring")), "the password store's file")
            return address

        def test_a_password_that_the_desktop_keeps_is_not_asked_for_again(self):
            address = self.password_store()
            session = self.session_file("host.orcf", Device=5, HostName="tpass@127.0.0.1", HostPort=self.port,
                                        HostKeyValidation=3)

            def begin():
                self.program = self.start(session, extra_env={"DBUS_SESSION_BUS_ADDRESS": address})
                self.program.window()
            begin()
            self.logged("Connection from")
            time.sleep(1)
            self.program.type("secret 1")
            self.program.key("alt+d")  # keep it
            time.sleep(0.5)
            self.desktop.picture("ssh-keep-password")
            self.program.key("Tab")
            self.program.key("Return")
            self.logged("Accepted")
            self.program.shows("$")
            self.program.kill()
            self.server.kill()
            self.server.wait()
            self.serve()  # with an empty log
            begin()
            self.logged("Accepted")
            self.program.shows("$")
            for path in self.home.rglob("*"):
                if path.is_file() and "sshd" not in path.parts:
                    self.assertNotIn(b"secret 1", path.read_bytes(), path)

    def test_a_session_by_a_jump_host_carries_a_port(self):
        user = "tkey" if IS_ROOT else os.environ["USER"]
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            forwarded = probe.getsockname()[1]
        self.program = self.start(self.session_file(
            "far.orcf", Device=5, HostName=f"{user}@127.0.0.1", HostPort=self.port,
            SSHJump=f"{user}@127.0.0.1:{self.port}", SSHKey=self.folder / "keys/user_ed25519", HostKeyValidation=3,
            SSHForwards=f"L{forwarded}:127.0.0.1:{self.port}"))
        self.program.window()
        self.program.shows("$")
        until(lambda: self.log.read_text().count("Accepted publickey") == 2, "two logins, one by the other")
        self.desktop.picture("ssh-by-a-jump-host")
        with socket.create_connection(("127.0.0.1", forwarded), timeout=10) as carried:
            self.assertTrue(carried.recv(100).startswith(b"SSH-2.0-"))


if __name__ == "__main__":
    desktop.main()
