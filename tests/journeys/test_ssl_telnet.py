"""A session to a telnet host behind TLS whose certificate nobody has signed: what the user is told, trust that is
remembered, work, and another certificate on the next day."""

import signal
import socket
import subprocess
import time

import desktop
from desktop import until

LOGIN = """#!/bin/bash
printf 'login: '; read -r name
echo "welcome $name on $TERM"
exec cat
"""


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class SslTelnet(desktop.Journey):
    def setUp(self):
        super().setUp()
        login = self.home / "login.sh"
        login.write_text(LOGIN)
        login.chmod(0o755)
        self.plain, self.port = free_port(), free_port()
        self.known = self.home / "config/kestrune/known_certificates"
        self.serve(f"TCP-LISTEN:{self.plain},bind=127.0.0.1,reuseaddr,fork",
                   f"EXEC:/usr/sbin/telnetd -h --exec-login={login},nofork")
        self.front = self.serve_tls("first")

    def serve(self, listen, then):
        server = subprocess.Popen(["timeout", "-k", "1", "300", "socat", listen, then], stdin=subprocess.DEVNULL,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(self.end, server)
        port = int(listen.split(":")[1].split(",")[0])

        def listening():
            with socket.socket() as probe:
                return probe.connect_ex(("127.0.0.1", port)) == 0
        until(listening, listen)
        return server

    def serve_tls(self, name):
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
                        "-nodes", "-subj", "/CN=localhost", "-days", "30", "-keyout", self.home / f"{name}.key",
                        "-out", self.home / f"{name}.pem"], check=True, stderr=subprocess.DEVNULL)
        return self.serve(f"OPENSSL-LISTEN:{self.port},bind=127.0.0.1,reuseaddr,fork,verify=0,"
                          f"cert={self.home}/{name}.pem,key={self.home}/{name}.key", f"TCP:127.0.0.1:{self.plain}")

    def end(self, server):
        if server.poll() is None:
            server.send_signal(signal.SIGTERM)  # timeout passes it on to all of its group
            server.wait()

    def remembered(self):
        return self.known.read_text() if self.known.exists() else ""

    def press(self, program, key, done):
        """A panel may take a moment to come up."""
        def pressed():
            program.key(key)
            time.sleep(0.3)
            return done()
        until(pressed, f"an answer to {key}")

    def test_trust_is_asked_for_once_and_again_when_the_certificate_changes(self):
        program = self.start(self.session_file("host.orcf", Device=7, HostName="localhost", HostPort=self.port))
        program.window()
        time.sleep(2)
        self.desktop.picture("ssl-new-host")
        self.press(program, "alt+u", lambda: self.remembered().startswith(f"localhost {self.port} "))
        program.shows("login:")
        program.type("ann\n")
        program.shows("welcome ann on vt220")
        first = self.remembered()
        self.desktop.picture("ssl-telnet")

        self.end(self.front)
        self.front = self.serve_tls("second")
        program.key("r")  # the reconnect panel's own key
        time.sleep(2)
        self.desktop.picture("ssl-changed")
        self.assertEqual(self.remembered(), first)
        program.key("alt+o")  # continue this once
        program.shows("login:")
        self.assertEqual(self.remembered(), first)


if __name__ == "__main__":
    desktop.main()
