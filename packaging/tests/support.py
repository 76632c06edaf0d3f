"""What the tests of the packages share: where things are, and a development server with a machine beside it."""
import os
import shutil
import subprocess
import sys

TOP = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path[:0] = [os.path.join(TOP, "packaging"), os.path.join(TOP, "packaging", "windows"), os.path.join(TOP, "tests", "e2e")]
import release  # noqa: E402
from test_machine import Machine  # noqa: E402

PACKAGES = os.path.join(TOP, "build", "packages")
STAGED = os.path.join(TOP, "build", "packages-work")
DEVSQLSERVER = os.environ.get("KV_DEVSQLSERVER", os.path.join(TOP, "build", "linux", "bin", "devsqlserver"))


def package(name):
    """The path of a package that ./package has built."""
    path = os.path.join(PACKAGES, name.format(version=release.VERSION))
    if not os.path.exists(path):
        sys.exit(f"{path} is missing; ./package builds it")
    return path


def files_below(folder):
    """The relative paths of all files below the folder."""
    return sorted(os.path.relpath(os.path.join(path, name), folder)
                  for path, _, files in os.walk(folder) for name in files)


def content(path):
    with open(path, "rb") as file:
        return file.read()


def run(command, timeout=300, **more):
    """Runs the command; its output if it succeeds, a failure with its output if not."""
    done = subprocess.run(command, capture_output=True, text=True, errors="replace", timeout=timeout,
                          stdin=subprocess.DEVNULL, **more)
    if done.returncode != 0:
        raise AssertionError(f"{command}: exit code {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


def differences(test, expected, actual):
    """Fails where the files below the two folders are not the same, byte for byte."""
    test.assertEqual(files_below(expected), files_below(actual))
    for name in files_below(expected):
        test.assertTrue(content(os.path.join(expected, name)) == content(os.path.join(actual, name)), f"{name} differs")


def machine_with(home, folder):
    """A computer under Wine whose program is the one that lies in `home`; all else of it lies in `folder`."""
    programs = folder + ".programs"
    os.makedirs(programs)
    shutil.copy(os.path.join(home, "KVLSQLDbMgr.exe"), programs)
    shutil.copy(os.path.join(home, "Binn", "OSQL.EXE"), programs)
    machine = Machine(programs, folder, wine=True)
    machine.install, machine.program = home, os.path.join(home, "KVLSQLDbMgr.exe")
    machine.set_registry(tools=home)
    return machine
