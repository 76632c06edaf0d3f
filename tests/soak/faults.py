# Tries every fault at each statement of every operation. The test suites do that: they compare the state and the log with
# the expected ones and print the number of faults that they tried. This runs the suites and adds up the numbers.
import os
import re
import subprocess

SUITES = {"admin_faults_test": "*", "unattended_test": "AutomaticUpgradeAbort*"}
SHORT = {"admin_faults_test": "RemoveDatabaseFaults.*"}
FAULTS = 1000  # of a full run, at least
LONGEST = 3600  # seconds of one suite


def run(part, settings):
    part.want("faults", FAULTS)
    environment = dict(os.environ) if settings.short else dict(os.environ, KV_EVERY_FAULT="1")
    for suite, tests in (SHORT if settings.short else SUITES).items():
        done = subprocess.run([os.path.join(settings.fault_binaries, suite), "--gtest_filter=" + tests],
                              env=environment, stdin=subprocess.DEVNULL, capture_output=True, text=True, errors="replace", timeout=LONGEST)
        log = os.path.join(settings.sources, "build", "soak", suite + ".log")
        os.makedirs(os.path.dirname(log), exist_ok=True)
        with open(log, "w", encoding="utf-8") as file:
            file.write(done.stdout + done.stderr)
        failed = re.findall(r"^.*: Failure\n(?:.*\n){1,8}", done.stdout, re.MULTILINE)
        part.check(done.returncode == 0, f"{suite}, whose output is {log}: {''.join(failed)[:3000] or done.stderr[-1000:]}")
        for name, count, steps in re.findall(r"^(.+): (\d+) faults tried at (?:its )?(\w+) ", done.stdout, re.MULTILINE):
            part.say(f"{name}: {count} faults at {steps} steps")
            part.count("faults", int(count))
        ran = re.search(r"(\d+) tests? from \d+ test suites? ran", done.stdout)
        part.count("tests of faults", int(ran.group(1)) if ran else 0)
