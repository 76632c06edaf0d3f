"""Lays out a clean Debian 12 root, installs an older version of the packages there, uses the program as an ordinary user
against the development server, upgrades, removes and purges. Needs root for the chroot."""
import os
import shutil
import subprocess
import tempfile
import unittest

import support
from support import TOP, package, run
import release

NAMES = ("kvlsqldbmgr", "kvlsqldbmgr-console", "kvlsqldbmgr-devserver")
OLDER = release.VERSION + "~older"
REGISTRY = """Windows Registry Editor Version 5.00

[HKEY_LOCAL_MACHINE\\SOFTWARE\\ORVIK\\QUORLEN\\Log]
@="/home/engineer/log"

[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Microsoft SQL Server\\KV_BATCH\\MSSQLServer\\CurrentVersion]
"CurrentVersion"="14.0.1000.169"

[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Microsoft SQL Server\\140\\Tools\\ClientSetup]
"SQLPath"="/usr/lib/kvlsqldbmgr/"
"""
# What an engineer does: a server to try things on, the log folder, one unattended run.
SESSION = r"""
set -eu
umask 077
mkdir -p log data .config/KVLSQLDbMgr
cp /root-of-test/registry.reg .config/KVLSQLDbMgr/
printf 'sa:Secret_1\n' > logins
devsqlserver --root server --port 0 --logins logins > ready &
server=$!
trap 'kill $server; wait' EXIT
for _ in $(seq 100); do grep -q ready ready && break; sleep 0.1; done
port=$(sed -n 's/.*:\([0-9]*\)$/\1/p' ready)
kvlsqldbmgr /scriptfolder /usr/share/kvlsqldbmgr/samples/sqlscripts/v1 /server 127.0.0.1,$port /user sa \
    /password Secret_1 /sqldatapath /home/engineer/data /installdb
kvl-osql -S 127.0.0.1,$port -U sa -P Secret_1 -n -h -1 -Q \
    "SELECT Value FROM Batch.dbo.LKConfig WHERE ParameterName = 'DatabaseVersion'" | tr -d ' ' | grep -x 1
ls -l /usr/lib/kvlsqldbmgr/Data/
cat log/* 2> /dev/null || true
"""


class Packages(unittest.TestCase):
    def test_lintian_finds_no_error(self):
        files = [package(f"{name}_{{version}}_amd64.deb") for name in NAMES]
        done = subprocess.run(["lintian", "--fail-on", "error", *files], capture_output=True, text=True, timeout=300)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)

    def test_the_program_itself_needs_no_window_library(self):
        control = run(["dpkg-deb", "--field", package("kvlsqldbmgr_{version}_amd64.deb"), "Depends"])
        self.assertNotIn("qt", control.lower())
        self.assertNotIn("libx11", control.lower())

    def test_the_console_recommends_the_plugin_for_wayland(self):
        control = run(["dpkg-deb", "--field", package("kvlsqldbmgr-console_{version}_amd64.deb"), "Recommends"])
        self.assertEqual(control.strip(), "qt6-wayland")


class CleanRoot(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp(prefix="kv-deb-", dir="/var/tmp")
        cls.addClassCleanup(shutil.rmtree, cls.folder, ignore_errors=True)
        cls.root = os.path.join(cls.folder, "root")
        run(["mmdebstrap", "--variant=apt", "--mode=root", "--aptopt=Acquire::Languages none", "bookworm", cls.root,
             *cls.sources()], timeout=900)
        shared = os.path.join(cls.root, "root-of-test")
        os.mkdir(shared)
        for name in NAMES:
            new = package(f"{name}_{{version}}_amd64.deb")
            shutil.copy(new, os.path.join(shared, f"{name}-new.deb"))
            cls.older(new, os.path.join(shared, f"{name}-old.deb"))
        for name, text in (("registry.reg", REGISTRY), ("session", SESSION)):
            with open(os.path.join(shared, name), "w") as file:
                file.write(text)
        for path in ("/etc/apt/apt.conf.d", "/etc/resolv.conf", "/etc/hosts"):
            if os.path.isfile(path):
                shutil.copy(path, cls.root + path)

    @classmethod
    def sources(cls):
        """The package sources of this machine."""
        found = []
        for folder, _, files in os.walk("/etc/apt"):
            for name in files:
                if name == "sources.list" or folder.endswith("sources.list.d") and name.endswith((".list", ".sources")):
                    found.append(os.path.join(folder, name))
        return found

    @classmethod
    def older(cls, new, target):
        """The same package under an older version."""
        work = os.path.join(cls.folder, "older")
        shutil.rmtree(work, ignore_errors=True)
        run(["dpkg-deb", "-R", new, work])
        control = os.path.join(work, "DEBIAN", "control")
        with open(control) as file:
            text = file.read().replace(f"Version: {release.VERSION}\n", f"Version: {OLDER}\n").replace(
                f"(= {release.VERSION})", f"(= {OLDER})")
        with open(control, "w") as file:
            file.write(text)
        run(["dpkg-deb", "--root-owner-group", "-b", work, target])

    def inside(self, script, user=None, expect=0):
        """Runs a script in the root; /proc is there only for that time."""
        command = ["unshare", "--mount", "--pid", "--fork", "sh", "-c",
                   'mount -t proc proc "$0/proc" && mount --bind /dev "$0/dev" && exec chroot "$0" "$@"', self.root]
        command += ["su", "-", user, "-c", script] if user else ["sh", "-c", script]
        environment = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "DEBIAN_FRONTEND": "noninteractive", "LC_ALL": "C.UTF-8",
                       **{name: value for name, value in os.environ.items() if name.lower().endswith("_proxy")}}
        done = subprocess.run(command, capture_output=True, text=True, errors="replace", timeout=900,
                              stdin=subprocess.DEVNULL, env=environment)
        self.assertEqual(done.returncode, expect, done.stdout + done.stderr)
        return done.stdout

    def exists(self, path):
        return os.path.lexists(self.root + path)

    def test_install_use_upgrade_purge(self):
        before = set(os.listdir(self.root + "/var/lib"))
        self.inside("apt-get update -qq && apt-get install -y -qq --no-install-recommends "
                    "/root-of-test/kvlsqldbmgr-old.deb /root-of-test/kvlsqldbmgr-devserver-old.deb bsdutils")
        self.inside("useradd --create-home --groups kvlsqldbmgr engineer && useradd --create-home stranger")
        self.assertIn("[SQL Server]", self.inside("odbcinst -q -d"))

        listing = self.inside("sh /root-of-test/session", user="engineer")
        self.assertIn("Create_Batch_Database.sql", listing)
        self.assertNotIn("Error in", listing)
        self.inside("! ls /var/lib/kvlsqldbmgr/Data", user="stranger")
        self.assertIn("/installdb", self.inside("kvlsqldbmgr /help 2>&1", user="engineer"))
        self.inside("man --version > /dev/null 2>&1 || true; test -s /usr/share/man/man1/kvlsqldbmgr.1.gz || "
                    "grep -q man /etc/dpkg/dpkg.cfg.d/*")

        self.inside("apt-get install -y -qq --no-install-recommends /root-of-test/kvlsqldbmgr-new.deb "
                    "/root-of-test/kvlsqldbmgr-devserver-new.deb")
        self.assertIn(f"Version: {release.VERSION}\n", self.inside("dpkg -s kvlsqldbmgr"))
        self.assertTrue(self.exists("/var/lib/kvlsqldbmgr/Data/Create_Batch_Database.sql"))
        self.assertIn("[SQL Server]", self.inside("odbcinst -q -d"))

        self.inside("apt-get remove -y -qq kvlsqldbmgr kvlsqldbmgr-devserver")
        self.assertTrue(self.exists("/var/lib/kvlsqldbmgr/Data/Create_Batch_Database.sql"))
        self.assertNotIn("[SQL Server]", self.inside("odbcinst -q -d || true"))
        self.inside("apt-get purge -y -qq kvlsqldbmgr kvlsqldbmgr-devserver")
        for path in ("/var/lib/kvlsqldbmgr", "/usr/lib/kvlsqldbmgr", "/usr/share/kvlsqldbmgr", "/usr/bin/kvlsqldbmgr",
                     "/usr/bin/devsqlserver"):
            self.assertFalse(self.exists(path), path)
        self.inside("! getent group kvlsqldbmgr")
        self.assertNotIn("kvlsqldbmgr", set(os.listdir(self.root + "/var/lib")) - before)


if __name__ == "__main__":
    unittest.main(verbosity=2)
