"""The development server's Windows build under Wine: starts, serves a client, bears being killed, ends cleanly.

usage: test_windows.py DEVSQLSERVER.EXE RUNNER… ; RUNNER is the command before a Windows program
"""

import os
import shutil
import signal
import subprocess
import sys
import unittest

from dev_server import PASSWORD, USER, DevServer

COMMAND = []


def run_bsqldb(server, text):
    program = shutil.which("bsqldb")
    if program is None:
        raise AssertionError("bsqldb is not installed")
    done = subprocess.run(
        [program, "-q", "-S", f"127.0.0.1:{server.port}", "-U", USER, "-P", PASSWORD], input=text, capture_output=True,
        text=True, timeout=60, env={**os.environ, "TDSVER": "7.4", "LC_ALL": "C.UTF-8"},
    )
    if done.returncode != 0:
        raise AssertionError(done.stdout + done.stderr)
    return done.stdout.split()


class Windows(unittest.TestCase):
    def test_serves_bears_a_kill_and_ends_cleanly(self):
        server = DevServer(COMMAND, "--drive", "D=/nowhere")
        try:
            run_bsqldb(server, "CREATE DATABASE Kept")
            run_bsqldb(server, "SELECT a = 1, b = N'\u20ac' INTO Kept.dbo.t\nUPDATE Kept.dbo.t SET a = 42")
            server.kill()
            server.start()
            self.assertEqual(run_bsqldb(server, "SELECT * FROM Kept.dbo.t"), ["42", "\u20ac"])
            data = server.folder / "root" / "Kept.mdf"
            self.assertTrue(data.is_file())
            run_bsqldb(server, "DROP DATABASE Kept")
            self.assertFalse(data.exists())
            # A logins file that others may read: Wine shows the system's rights as an access list.
            open_logins = server.folder / "open"
            open_logins.write_text("sa:x\n")
            open_logins.chmod(0o644)
            done = subprocess.run(
                [*COMMAND, "--root", str(server.folder / "r"), "--port", "0", "--logins", str(open_logins)],
                capture_output=True, text=True, timeout=60,
            )
            self.assertEqual(done.returncode, 2)
            self.assertIn("holds passwords", done.stderr)
        finally:
            # Wine passes it on as Ctrl-C.
            self.assertEqual(server.stop(signal.SIGINT), 0)


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    COMMAND = [*sys.argv[2:], sys.argv[1]]
    unittest.main(argv=sys.argv[:1])
