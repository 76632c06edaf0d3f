"""Unpacks the source archive into a fresh folder, which is no checkout, and builds and checks it from itself."""
import os
import shutil
import subprocess
import sys
import tempfile

from support import package
import release


def main():
    folder = tempfile.mkdtemp(prefix="kv-source-", dir="/var/tmp")
    try:
        subprocess.run(["tar", "-xJf", package("kvlsqldbmgr-{version}.tar.xz"), "-C", folder], check=True)
        tree = os.path.join(folder, f"kvlsqldbmgr-{release.VERSION}")
        sys.exit(subprocess.run(["./check"], cwd=tree, timeout=5400).returncode)
    finally:
        shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    main()
