"""A development server of its own for a test: fresh folder, free port, one login; ended and checked at the end.

Knows nothing of the clients that talk to it.
"""

import pathlib
import re
import shutil
import signal
import subprocess
import tempfile
import time

LONGEST = 120  # seconds that only a failure waits for
USER = "sa"
PASSWORD = "pass:word with blanks"


class DevServer:
    def __init__(self, program, *more):
        """`program` may be a list: what runs it stands before it. `more` are further arguments."""
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
        """Starts it, again after kill: on the same folder, at a port that may be another."""
        self.process = subprocess.Popen(self.command, stdout=subprocess.PIPE, text=True)
        ready = self.process.stdout.readline()
        match = re.fullmatch(r"devsqlserver: ready on 127\.0\.0\.1:(\d+)\n", ready)
        if not match:
            self.kill()
            raise AssertionError(f"the server said {ready!r}")
        self.port = int(match[1])

    def kill(self):
        """Ends it without a word, as a crash does."""
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()

    def stop(self, by=signal.SIGTERM):
        """Ends the server as an operator does; its exit code."""
        self.process.send_signal(by)
        try:
            return self.process.wait(timeout=LONGEST)
        finally:
            self.kill()
            shutil.rmtree(self.folder)


def becomes_true(condition):
    """Asks until it is so; whether it was in time."""
    end = time.monotonic() + LONGEST
    while not condition():
        if time.monotonic() > end:
            return False
        time.sleep(0.02)
    return True
