"""Builds the packages from the built trees into build/packages/. Called by ./package; see its --help.

  build.py PART …      PART is msi, zip, deb or source
"""
import os
import shutil
import subprocess
import sys
import zipfile

sys.path[:0] = [os.path.dirname(os.path.abspath(__file__)), os.path.join(os.path.dirname(os.path.abspath(__file__)), "windows"),
                os.path.join(os.path.dirname(os.path.abspath(__file__)), "debian")]
import deb  # noqa: E402
import msi  # noqa: E402
import stage  # noqa: E402
from release import TOP, VERSION, stamp  # noqa: E402

TARGET = os.path.join(TOP, "build", "packages")
WORK = os.path.join(TOP, "build", "packages-work")
# The preset of the build tree for each kind of processor.
WINDOWS = {"x64": "windows", "x86": "windows-x86"}


def fresh(name):
    folder = os.path.join(WORK, name)
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(folder)
    return folder


def report(path):
    print(f"  {os.path.relpath(path, TOP)}  {os.path.getsize(path):,} bytes", flush=True)


def staged_windows(arch):
    folder = fresh(f"windows-{arch}")
    stage.windows(folder, WINDOWS[arch])
    stamp(folder)
    return folder


def build_msi():
    for arch in WINDOWS:
        target = os.path.join(TARGET, f"KVLSQLDbMgr-{VERSION}-{arch}.msi")
        msi.build(staged_windows(arch), arch, target, os.path.join(WORK, f"msi-{arch}"))
        report(target)


def build_zip():
    for arch in WINDOWS:
        folder = staged_windows(arch)
        name = f"KVLSQLDbMgr-{VERSION}-{arch}"
        target = os.path.join(TARGET, name + ".zip")
        # The times of a .zip are local ones without a zone, in steps of two seconds.
        os.environ["TZ"] = "UTC"
        with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
            for path, folders, files in os.walk(folder):
                folders.sort()
                for file in sorted(files):
                    whole = os.path.join(path, file)
                    archive.write(whole, os.path.join(name, os.path.relpath(whole, folder)))
        report(target)


def build_deb():
    for target in deb.build(fresh("deb"), TARGET):
        report(target)


def build_source():
    name = f"kvlsqldbmgr-{VERSION}"
    target = os.path.join(TARGET, name + ".tar.xz")
    if not os.path.exists(os.path.join(TOP, ".git")):
        raise RuntimeError("the source archive is made from a checkout: this tree is not one")
    # The modes of the files do not depend on the settings of who makes the archive.
    tar = subprocess.check_output(["git", "-C", TOP, "-c", "tar.umask=0022", "archive", "--format=tar", f"--prefix={name}/",
                                   "HEAD"])
    with open(target, "wb") as file:
        subprocess.run(["xz", "--threads=1", "-9", "--stdout"], input=tar, stdout=file, check=True)
    report(target)


PARTS = {"msi": build_msi, "zip": build_zip, "deb": build_deb, "source": build_source}


def main(parts):
    unknown = [part for part in parts if part not in PARTS]
    if unknown:
        sys.exit(f"build.py: there is no package '{unknown[0]}'; known are {', '.join(PARTS)}")
    os.makedirs(TARGET, exist_ok=True)
    os.umask(0o022)
    for part in parts or PARTS:
        PARTS[part]()


if __name__ == "__main__":
    main(sys.argv[1:])
