"""What every package needs to know: names and version, from cmake/version.cmake alone, and the time that all files carry."""
import os
import re
import subprocess
import uuid

TOP = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def _settings():
    with open(os.path.join(TOP, "cmake", "version.cmake"), encoding="utf-8") as file:
        return dict(re.findall(r'^set\((KV_\w+) "([^"]*)"\)', file.read(), re.MULTILINE))


_SET = _settings()
VERSION = _SET["KV_VERSION"]
VERSION_COMMENTS = _SET["KV_VERSION_COMMENTS"]
PRODUCT = _SET["KV_PRODUCT"]
DESCRIPTION = _SET["KV_DESCRIPTION"]
MAKER = _SET["KV_MAKER"]
# The base of all identifiers of the packages: a name's identifier is the same in every build.
_NAMESPACE = uuid.UUID("7d3f0c52-9f5e-4e0b-8a43-6f1f2f6c1b90")


def identifier(*names):
    """A GUID in the form of Windows Installer, always the same for the same names."""
    return "{" + str(uuid.uuid5(_NAMESPACE, "/".join(names))).upper() + "}"


def source_time():
    """Seconds since 1970 that every file in a package carries: SOURCE_DATE_EPOCH, else the time of the last commit, or
    in the source archive the time that was written into it."""
    if os.environ.get("SOURCE_DATE_EPOCH"):
        return int(os.environ["SOURCE_DATE_EPOCH"])
    with open(os.path.join(TOP, "packaging", "source-time"), encoding="ascii") as file:
        text = file.read().strip()
    if text.isdigit():
        return int(text)
    return int(subprocess.check_output(["git", "-C", TOP, "log", "-1", "--format=%ct"], text=True))


def stamp(folder):
    """Gives all that lies in the folder the time of the source, so that two builds are equal."""
    when = source_time()
    for path, folders, files in os.walk(folder):
        for name in folders + files:
            os.utime(os.path.join(path, name), (when, when), follow_symlinks=False)
    os.utime(folder, (when, when))
