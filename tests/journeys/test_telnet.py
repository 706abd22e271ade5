"""A session to a real telnet host on loopback: log in, work, and the host goes away."""

import signal
import socket
import subprocess

import desktop
from desktop import until

LOGIN = """#!/bin/bash
printf 'login: '; read -r name
echo "welcome $name on $TERM"
while read -r line; do
    case $line in
        size) stty size ;;
        bye) exit 0 ;;
        *) echo "you said: $line" ;;
    esac
done
"""


class Telnet(desktop.Journey):
    def host(self):
        """A telnet server of the test's own; its port. It dies with the test, or when told to."""
        login = self.home / "login.sh"
        login.write_text(LOGIN)
        login.chmod(0o755)
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            port = probe.getsockname()[1]
        self.server = subprocess.Popen(
            ["socat", f"TCP-LISTEN:{port},bind=127.0.0.1,reuseaddr,fork",
             f"EXEC:/usr/sbin/telnetd -h --exec-login={login},nofork"], start_new_session=True,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(self.end_server)

        def listening():
            with socket.socket() as probe:
                return probe.connect_ex(("127.0.0.1", port)) == 0
        until(listening, "the telnet server")
        return port

    def end_server(self):
        if self.server.poll() is None:
            subprocess.run(["pkill", "-KILL", "-s", str(self.server.pid)], check=False)
            self.server.send_signal(signal.SIGKILL)
            self.server.wait()

    def test_log_in_work_resize_and_the_server_is_killed(self):
        port = self.host()
        program = self.start(self.session_file("host.orcf", Device=3, HostName="127.0.0.1", HostPort=port))
        window = program.window()
        program.shows("login:")
        program.type("ann\n")
        program.shows("welcome ann on vt220")
        program.type("size\n")

        def size():
            rows = [line.split() for line in program.screen_text().splitlines()]
            found = [r for r in rows if len(r) == 2 and all(word.isdigit() for word in r)]
            return tuple(map(int, found[-1])) if found else None
        before = until(size, "the size that the host knows")
        _, _, width, height = program.geometry(window)
        program.resize(window, width - 200, height - 150)

        def smaller():
            program.type("size\n")
            now = size()
            return now if now and now[0] < before[0] and now[1] < before[1] else None
        until(smaller, "the host knows the new size", every=0.3)
        program.type("a ü\n")
        program.shows("you said: a ü")
        self.desktop.picture("telnet")

        self.end_server()
        program.shows("onnection", under_panel=True)
        self.desktop.picture("telnet-lost")
        self.assertIn("welcome ann", program.last_text)  # what was on the screen stays
        self.assertIsNone(program.process.poll())

    def test_a_port_where_nobody_listens_is_said_in_words(self):
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            port = probe.getsockname()[1]
        program = self.start(self.session_file("dead.orcf", Device=3, HostName="127.0.0.1", HostPort=port))
        program.window()
        shown = program.shows("refused", under_panel=True)
        self.assertIn(str(port), shown)


if __name__ == "__main__":
    desktop.main()
