"""A development server of its own for a test: fresh folder, free port, one login; ended and checked at the end.

Knows nothing of the clients that talk to it.
"""

import pathlib
import re
import shutil
import signal
import subprocess
import tempfile

USER = "sa"
PASSWORD = "pass:word with blanks"


class DevServer:
    def __init__(self, program, *more):
        """`program` may be a list: what runs it stands before it. `more` are further arguments."""
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="devsqlserver-"))
        self.logins = self.folder / "logins"
        self.logins.write_text(f"# logins of the test\n\n{USER}:{PASSWORD}\n")
        self.logins.chmod(0o600)
        self.process = subprocess.Popen(
            [*([program] if isinstance(program, str) else program), "--root", str(self.folder / "root"), "--port", "0", "--logins", str(self.logins), *more],
            stdout=subprocess.PIPE,
            text=True,
        )
        ready = self.process.stdout.readline()
        match = re.fullmatch(r"devsqlserver: ready on 127\.0\.0\.1:(\d+)\n", ready)
        if not match:
            self.process.kill()
            self.process.wait()
            self.process.stdout.close()
            shutil.rmtree(self.folder)
            raise AssertionError(f"the server said {ready!r}")
        self.port = int(match[1])

    def stop(self):
        """Ends the server as an operator does; its exit code."""
        self.process.send_signal(signal.SIGTERM)
        try:
            return self.process.wait(timeout=30)
        finally:
            self.process.kill()
            self.process.stdout.close()
            shutil.rmtree(self.folder)
