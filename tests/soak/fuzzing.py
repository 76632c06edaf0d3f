# Fuzzes every reader of foreign input. A short round runs the harnesses over their saved inputs only, as their tests do; a
# full one runs each harness under libFuzzer, several at a time.
import os
import re
import subprocess
import time

from console_automation import end_group

HARNESSES = ("command_line", "templates", "reg_file", "user_settings", "package_file", "script", "switches", "odbc_rows",
             "server_messages")
SECONDS = 600  # of each harness
KEPT_INPUTS_TAKE = 120  # seconds, at most
REDUCING_TAKES = 1800  # seconds after a run, at most, in which tools/fuzz selects the inputs to keep


def run(part, settings):
    part.want("harnesses run for 10 minutes", len(HARNESSES))
    if settings.short:
        for harness in HARNESSES:
            over_kept_inputs(part, settings, harness)
        return
    waiting, running = list(HARNESSES), []
    try:
        while waiting or running:
            while waiting and len(running) < settings.jobs:
                running.append(UnderLibfuzzer(part, settings, waiting.pop(0)))
            for one in [one for one in running if one.has_ended()]:
                running.remove(one)
                one.count()
            time.sleep(1)
    finally:
        for one in running:
            one.stop()


def over_kept_inputs(part, settings, harness):
    inputs = os.path.join(os.path.dirname(settings.binaries), "tests", "fuzz", "inputs", harness + "_fuzz")
    done = subprocess.run([os.path.join(settings.binaries, harness + "_fuzz"), inputs], capture_output=True, text=True,
                          errors="replace", timeout=KEPT_INPUTS_TAKE)
    match = re.search(r"^(\d+) inputs$", done.stdout, re.MULTILINE)
    part.check(done.returncode == 0 and match, f"{harness}: {done.stdout[-200:]}{done.stderr[-2000:]}")
    part.count("harnesses over their kept inputs")
    part.count("kept inputs", int(match.group(1)) if match else 0)


class UnderLibfuzzer:
    """A harness that runs under libFuzzer."""

    def __init__(self, part, settings, harness):
        self.part, self.harness = part, harness
        self.seconds = settings.seconds or SECONDS
        self.folder = os.path.join(settings.sources, "build", "fuzz")
        os.makedirs(self.folder, exist_ok=True)
        with open(self.path(".out"), "w", encoding="utf-8") as output:
            self.process = subprocess.Popen(
                [os.path.join(settings.sources, "tools", "fuzz"), "--keep", str(self.seconds), harness],
                stdin=subprocess.DEVNULL, stdout=output, stderr=output, start_new_session=True)
        self.end = time.monotonic() + self.seconds + REDUCING_TAKES

    def path(self, extension):
        return os.path.join(self.folder, self.harness + extension)

    def has_ended(self):
        if self.process.poll() is None and time.monotonic() > self.end:
            self.part.fail(f"{self.harness} has not ended {REDUCING_TAKES} s after its time")
            self.stop()
        return self.process.poll() is not None

    def stop(self):
        end_group(self.process)

    def count(self):
        """Counts the inputs that the run has tried, after its end."""
        with open(self.path(".out"), encoding="utf-8", errors="replace") as file:
            output = file.read()
        if not self.part.check(self.process.returncode == 0, f"{self.harness}: {output[-2500:]}"):
            return
        with open(self.path(".log"), encoding="utf-8", errors="replace") as file:
            units = re.findall(r"number_of_executed_units: (\d+)", file.read())
        tried = int(units[0]) if units else 0
        minutes, seconds = divmod(self.seconds, 60)
        self.part.count(f"harnesses run for {minutes} minutes" if seconds == 0 else f"harnesses run for {self.seconds} s")
        self.part.count("inputs tried", tried)
        self.part.count(f"inputs tried by {self.harness}", tried)
        self.part.check(tried > 0, f"{self.harness}: its log has no number of inputs")
        self.part.say(f"{self.harness}: {tried:,} inputs tried in {self.seconds} s")
