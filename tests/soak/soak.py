# The soak: long runs of the whole system. They count what they do, and fail if anything fails or grows.
#
#   soak.py [--short] [--report] [--seconds N] [--jobs N] --bin FOLDER [--windows FOLDER] [--faults FOLDER] [PART …]
#
# ./soak builds the programs and calls this; ./check runs the short round on the sanitized tree.
import argparse
import contextlib
import importlib
import os
import shutil
import signal
import subprocess
import sys
import tempfile

TOP = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path[:0] = [os.path.join(TOP, "tests", "e2e"), os.path.join(TOP, "tests", "samples"),
                os.path.dirname(os.path.abspath(__file__))]

import part as soak_part  # noqa: E402
import report  # noqa: E402

PARTS = ("installs", "console", "console-windows", "faults", "kills", "fuzz", "secrets")
UNDER_WINE = ("console-windows",)  # not in the short round
MODULES = {"console-windows": "console", "fuzz": "fuzzing", "secrets": "secrecy"}  # the others have the part's name


class Stopped(Exception):
    """The soak was told to end. Its counts so far are reported, and all servers and folders are removed."""


def stop(*_):
    raise Stopped("stopped before its end")


class Settings:
    """The folders of the programs, and the length of the run."""

    def __init__(self, arguments):
        self.short = arguments.short
        self.seconds, self.jobs = arguments.seconds, arguments.jobs or os.cpu_count() or 1
        self.binaries, self.windows, self.fault_binaries = (path and os.path.abspath(path) for path in (
            arguments.bin, arguments.windows, arguments.faults or arguments.bin))
        self.dev_server = os.path.join(self.binaries, "devsqlserver")
        self.sources = TOP

    @contextlib.contextmanager
    def folder(self):
        """A folder for the part. The programs that it starts have their temporary folder in it."""
        path = tempfile.mkdtemp(prefix="kv-soak-")
        before = os.environ.get("TMPDIR")
        os.environ["TMPDIR"] = os.path.join(path, "tmp")
        os.mkdir(os.environ["TMPDIR"])
        try:
            yield path
        finally:
            os.environ.pop("TMPDIR")
            if before is not None:
                os.environ["TMPDIR"] = before
            shutil.rmtree(path, ignore_errors=True)


def run_part(name, settings):
    part = soak_part.Part(name, settings.short)
    part.say("begins")
    try:
        importlib.import_module(MODULES.get(name, name)).run(part, settings)
    except (Stopped, KeyboardInterrupt) as reason:
        part.stopped = True
        part.say(str(reason))
    except (RuntimeError, OSError, AssertionError, subprocess.SubprocessError) as error:
        part.fail(f"{type(error).__name__}: {error}")
    result = part.result()
    part.say("FAILED" if result["failures"] else "done")
    return result


def main():
    signal.signal(signal.SIGTERM, stop)
    parser = argparse.ArgumentParser(prog="soak.py")
    parser.add_argument("--short", action="store_true")
    parser.add_argument("--report", action="store_true")
    parser.add_argument("--bin", required=True)
    parser.add_argument("--windows")
    parser.add_argument("--faults", help="the folder of the fault suites, if it is another")
    parser.add_argument("--seconds", type=int, help="time of each fuzzing harness")
    parser.add_argument("--jobs", type=int, help="fuzzing harnesses at a time")
    parser.add_argument("parts", nargs="*", metavar="PART")
    arguments = parser.parse_args()
    unknown = [name for name in arguments.parts if name not in PARTS]
    if unknown:
        parser.error(f"no such part: {unknown[0]}; there are {', '.join(PARTS)}")
    if not arguments.windows and any(name in UNDER_WINE for name in arguments.parts):
        parser.error("--windows is needed for what runs under Wine")
    if arguments.short and arguments.report:
        parser.error("a short round is not reported")
    settings = Settings(arguments)
    results = []
    wanted = arguments.parts or [name for name in PARTS if not (arguments.short and name in UNDER_WINE)]
    for name in wanted:
        results.append(run_part(name, settings))
        if arguments.report:
            report.write(results[-1], os.path.join(TOP, "docs", "reliability.md"))
        if results[-1]["stopped"]:
            break
    report.show(results)
    return 1 if any(result["failures"] or result["stopped"] for result in results) else 0


if __name__ == "__main__":
    sys.exit(main())
