"""A session that outlives its connection: the line to a telnet and to an SSH host is cut, the panel offers to resume,
and the shell comes back as it was, with what it has printed meanwhile. kestrune-rebind on the host is the one just built."""

import os
import pathlib
import signal
import socket
import subprocess

import desktop
from desktop import until

IS_ROOT = os.getuid() == 0
REBIND = pathlib.Path(desktop.PROGRAM).with_name("kestrune-rebind")


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class Resume(desktop.Journey):
    def setUp(self):
        super().setUp()
        self.home.chmod(0o755)
        self.host_port, self.port = free_port(), free_port()

    def serve(self, *command):
        """A program in a process group of its own, which ends with the test."""
        process = subprocess.Popen(command, start_new_session=True, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(self.end, process)
        return process

    @staticmethod
    def end(process):
        if process.poll() is None:
            os.killpg(process.pid, signal.SIGKILL)
            process.wait()

    @staticmethod
    def listening(port):
        def open_to_all():
            with socket.socket() as probe:
                return probe.connect_ex(("127.0.0.1", port)) == 0
        until(open_to_all, f"a server at {port}")

    def lay_cable(self):
        """Between the program and the host: cut it with `end`."""
        cable = self.serve("socat", f"TCP-LISTEN:{self.port},bind=127.0.0.1,reuseaddr,fork",
                           f"TCP:127.0.0.1:{self.host_port}")
        self.listening(self.port)
        return cable

    def profile(self):
        """What a login runs: the sessions of this test are its own."""
        self.kept = self.home / "far/kept"
        self.kept.parent.mkdir()
        self.kept.parent.chmod(0o777)  # the host's user makes their own folder there
        return (f"mkdir -p -m 700 {self.kept}; export PS1='$ ' KESTRUNE_REBIND_DIR={self.kept}\n"
                f"[ -n \"$KESTRUNE_REBIND\" ] || {{ {REBIND} --login --keep 5 -- /bin/bash --norc && exit; }}\n")

    def work_cut_and_resume(self, name, session):
        cable = self.lay_cable()
        program = self.start(session)
        program.window()
        program.shows("$")
        go = self.kept.parent / "go"  # the host prints when it sees it, and takes it away
        program.type(f"kept='still here'; clear; (until [ -e {go} ]; do sleep 0.1; done; "
                     f"echo mean''while; rm -f {go}) & cat\n")
        program.shows("[1]")
        program.type("typed before\n")
        program.shows("typed before\ntyped before")
        self.end(cable)
        go.touch()
        until(lambda: not go.exists(), "the host has printed into the gap")
        # Whether the panel is up can be seen by nothing but its key, and a picture for people.
        self.desktop.run("sleep", "1")
        self.desktop.picture(f"{name}-resume-offered")
        self.lay_cable()
        program.key("r")  # the key of the panel's "Reconnect and resume"
        shown = program.shows("typed before", "meanwhile")
        self.assertEqual(shown.count("meanwhile"), 1, shown)
        program.key("ctrl+c")
        program.type("clear; echo $kept in $KESTRUNE_REBIND_DIR\n")
        shown = program.shows(f"still here in {self.kept}")
        self.desktop.picture(f"{name}-resumed")
        self.assertIsNone(program.process.poll())

    def test_telnet(self):
        login = self.home / "login.sh"
        login.write_text("#!/bin/bash\n" + self.profile() + "exec /bin/bash --norc\n")
        login.chmod(0o755)
        self.serve("socat", f"TCP-LISTEN:{self.host_port},bind=127.0.0.1,reuseaddr,fork",
                   f"EXEC:/usr/sbin/telnetd -h --exec-login={login},nofork")
        self.listening(self.host_port)
        self.work_cut_and_resume("telnet", self.session_file("host.orcf", Device=3, HostName="127.0.0.1",
                                                             HostPort=self.port))

    if IS_ROOT:  # elsewhere the server would read the real user's own profile
        def test_ssh(self):
            folder = self.home / "sshd"
            self.serve(desktop.SOURCE / "tests/partners/sshd.sh", folder, str(self.host_port))
            self.listening(self.host_port)
            profile = folder / "home/tkey/.bash_profile"
            profile.write_text(self.profile())
            profile.chmod(0o644)
            self.work_cut_and_resume("ssh", self.session_file(
                "host.orcf", Device=5, HostName="tkey@127.0.0.1", HostPort=self.port, HostKeyValidation=3,
                SSHKey=folder / "keys/user_ed25519"))


if __name__ == "__main__":
    desktop.main()
