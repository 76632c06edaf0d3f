"""Starts a development server for a test, with a new folder, a free port and one login, and ends it.

Knows nothing of the clients that talk to it.
"""

import pathlib
import re
import shutil
import signal
import subprocess
import tempfile
import time

LONGEST = 120  # seconds to wait for something; only a failure takes so long
USER = "sa"
PASSWORD = "pass:word with blanks"


class DevServer:
    def __init__(self, program, *more):
        """Starts `program`, the path of the server, or a list of a command that runs it and its path. `more` are further
        arguments of the server."""
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="devsqlserver-"))
        self.logins = self.folder / "logins"
        self.logins.write_text(f"# logins of the test\n\n{USER}:{PASSWORD}\n")
        self.logins.chmod(0o600)
        self.command = [
            *([program] if isinstance(program, str) else program),
            "--root", str(self.folder / "root"), "--port", "0", "--logins", str(self.logins), *more,
        ]
        try:
            self.start()
        except AssertionError:
            shutil.rmtree(self.folder)
            raise

    def start(self):
        """Starts the server, also again after kill: with the same folder, but perhaps another port."""
        self.process = subprocess.Popen(self.command, stdout=subprocess.PIPE, text=True)
        ready = self.process.stdout.readline()
        match = re.fullmatch(r"devsqlserver: ready on 127\.0\.0\.1:(\d+)\n", ready)
        if not match:
            self.kill()
            raise AssertionError(f"the server said {ready!r}")
        self.port = int(match[1])

    def kill(self):
        """Kills the process, as a crash does."""
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()

    def stop(self, by=signal.SIGTERM):
        """Ends the server as an operator does, and removes its folder. Returns the exit code."""
        self.process.send_signal(by)
        try:
            return self.process.wait(timeout=LONGEST)
        finally:
            self.kill()
            shutil.rmtree(self.folder)


def becomes_true(condition):
    """Calls the condition until it returns True. Returns False if that takes too long."""
    end = time.monotonic() + LONGEST
    while not condition():
        if time.monotonic() > end:
            return False
        time.sleep(0.02)
    return True
