# Fuzzing of everything that takes foreign input apart. The short round goes over the kept inputs alone, which the tests of
# the harnesses do as well; the long one runs each harness under libFuzzer.
import os
import re
import subprocess

HARNESSES = ("command_line", "templates", "reg_file", "user_settings", "package_file", "script", "switches", "odbc_rows",
             "server_messages")
SECONDS = 600  # of each harness
KEPT_INPUTS_TAKE = 120


def run(part, settings):
    part.want("harnesses run for 10 minutes", len(HARNESSES))
    for harness in HARNESSES:
        if settings.short:
            over_kept_inputs(part, settings, harness)
        else:
            under_libfuzzer(part, settings, harness)


def over_kept_inputs(part, settings, harness):
    inputs = os.path.join(os.path.dirname(settings.binaries), "tests", "fuzz", "inputs", harness + "_fuzz")
    done = subprocess.run([os.path.join(settings.binaries, harness + "_fuzz"), inputs], capture_output=True, text=True,
                          errors="replace", timeout=KEPT_INPUTS_TAKE)
    match = re.search(r"^(\d+) inputs$", done.stdout, re.MULTILINE)
    part.check(done.returncode == 0 and match, f"{harness}: {done.stdout[-200:]}{done.stderr[-2000:]}")
    part.count("harnesses over their kept inputs")
    part.count("kept inputs", int(match.group(1)) if match else 0)


def under_libfuzzer(part, settings, harness):
    seconds = settings.seconds or SECONDS
    log = os.path.join(settings.sources, "build", "fuzz", harness + ".log")
    done = subprocess.run([os.path.join(settings.sources, "tools", "fuzz"), "--keep", str(seconds), harness],
                          stdin=subprocess.DEVNULL, capture_output=True, text=True, errors="replace",
                          timeout=seconds + 3600)
    if not part.check(done.returncode == 0, f"{harness}: {done.stdout[-500:]}{done.stderr[-2000:]}"):
        return
    with open(log, encoding="utf-8", errors="replace") as file:
        units = re.findall(r"number_of_executed_units: (\d+)", file.read())
    part.count(f"harnesses run for {seconds // 60} minutes" if seconds >= 60 else f"harnesses run for {seconds} s")
    part.count("inputs tried", int(units[0]) if units else 0)
    part.say(f"{harness}: {int(units[0]) if units else 0:,} inputs tried in {seconds} s")
