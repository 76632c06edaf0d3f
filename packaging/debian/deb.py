"""Makes the three Debian packages: the program, the console's window, the development server."""
import gzip
import os
import re
import subprocess
import sys

sys.path.insert(0, os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
import stage  # noqa: E402
from release import MAKER, TOP, VERSION, source_time, stamp  # noqa: E402

HERE = os.path.dirname(os.path.abspath(__file__))
LINUX = os.path.join(os.path.dirname(HERE), "linux")
BUILT = os.path.join(TOP, "build", "linux", "bin")
HOME = "usr/lib/kvlsqldbmgr"
MAINTAINER = f"{MAKER} <maintainers@halvane-vindrel.example>"


def _program(target):
    """The program, its query tool in the folder that SQLPath names, and the folder that it writes to."""
    stage.program(os.path.join(BUILT, "KVLSQLDbMgr"), os.path.join(target, HOME, "KVLSQLDbMgr"), "strip")
    stage.program(os.path.join(BUILT, "OSQL.EXE"), os.path.join(target, HOME, "Binn", "OSQL.EXE"), "strip")
    _link(target, "usr/bin/kvlsqldbmgr", "../lib/kvlsqldbmgr/KVLSQLDbMgr")
    _link(target, "usr/bin/kvl-osql", "../lib/kvlsqldbmgr/Binn/OSQL.EXE")
    # The program writes Data beside itself; what changes belongs below /var.
    _link(target, HOME + "/Data", "/var/lib/kvlsqldbmgr/Data")
    os.makedirs(os.path.join(target, "var/lib/kvlsqldbmgr/Data"))
    stage.samples(os.path.join(target, "usr/share/kvlsqldbmgr/samples"))
    stage.manual(os.path.join(target, "usr/share/doc/kvlsqldbmgr/html"))
    stage.copy(os.path.join(HERE, "odbcinst.ini"), os.path.join(target, "usr/share/kvlsqldbmgr/odbcinst.ini"))
    stage.copy(os.path.join(LINUX, "registry.reg"), os.path.join(target, "usr/share/kvlsqldbmgr/registry.reg"))
    stage.man_pages(target, ["kvlsqldbmgr", "kvl-osql"])
    _completion(target, "kvlsqldbmgr", "kvl-osql")


def _console(target):
    stage.program(os.path.join(BUILT, CONSOLE_MODULE), os.path.join(target, HOME, CONSOLE_MODULE), "strip")
    os.chmod(os.path.join(target, HOME, CONSOLE_MODULE), 0o644)
    stage.copy(os.path.join(LINUX, "kvlsqldbmgr.desktop"), os.path.join(target, "usr/share/applications/kvlsqldbmgr.desktop"))
    stage.icons(os.path.join(target, "usr/share/icons/hicolor"), "kvlsqldbmgr")


def _devserver(target):
    stage.program(os.path.join(BUILT, "devsqlserver"), os.path.join(target, "usr/bin/devsqlserver"), "strip")
    stage.man_pages(target, ["devsqlserver"])
    _completion(target, "devsqlserver")


CONSOLE_MODULE = "libkvconsole.so"

PACKAGES = {
    "kvlsqldbmgr": {
        "fill": _program, "section": "database",
        "depends": "odbcinst, tdsodbc, adduser", "recommends": "kvlsqldbmgr-console", "suggests": "kvlsqldbmgr-devserver",
        "about": "database manager of the Lotkeeper server",
        "more": ["Creates, fills, upgrades, synchronises and replicates the batch database of",
                 "Lotkeeper on a pair of SQL Servers, unattended from its command line.", ".",
                 "This package holds the program, its query tool and sample scripts."]},
    "kvlsqldbmgr-console": {
        "fill": _console, "section": "database", "depends": f"kvlsqldbmgr (= {VERSION})",
        "recommends": "qt6-wayland",
        "about": "window of the Lotkeeper database manager",
        "more": ["The console of the database manager of the Lotkeeper server: one window with",
                 "seven tabs for scripts, synchronisation, upgrade, replication, tables and",
                 "stored procedures."]},
    "kvlsqldbmgr-devserver": {
        "fill": _devserver, "section": "devel", "depends": "",
        "about": "development SQL server of the Lotkeeper database manager",
        "more": ["Speaks the protocol of SQL Server on the loopback address, for trying,",
                 "rehearsing and testing. It is not SQL Server and is for no production data."]},
}


def _link(target, path, to):
    os.makedirs(os.path.dirname(os.path.join(target, path)), exist_ok=True)
    os.symlink(to, os.path.join(target, path))


def _completion(target, *programs):
    for name in programs:
        stage.copy(os.path.join(LINUX, "completion", name),
                   os.path.join(target, "usr/share/bash-completion/completions", name))


def _compressed(text, path):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as raw, gzip.GzipFile("", "wb", 9, raw, mtime=0) as file:
        file.write(text.encode())
    os.chmod(path, 0o644)


def _documents(target, package):
    folder = os.path.join(target, "usr/share/doc", package)
    stage.copy(os.path.join(HERE, "copyright"), os.path.join(folder, "copyright"))
    when = subprocess.check_output(["date", "-u", "-R", "-d", f"@{source_time()}"], text=True).strip()
    _compressed(f"kvlsqldbmgr ({VERSION}) unstable; urgency=medium\n\n  * Release {VERSION}.\n\n -- {MAINTAINER}  {when}\n",
                os.path.join(folder, "changelog.gz"))
    stage.copy(os.path.join(TOP, "docs", "third-party.md"), os.path.join(folder, "third-party.md"))


def _libraries(work, target):
    """The packages of the libraries that the executables below `target` need, as dpkg-shlibdeps finds them."""
    programs = []
    for path, _, files in os.walk(target):
        for name in files:
            whole = os.path.join(path, name)
            if not os.path.islink(whole) and open(whole, "rb").read(4) == b"\x7fELF":
                programs.append(whole)
    if not programs:
        return ""
    # dpkg-shlibdeps works in a source tree alone; a file with the package's name is all that it reads of one.
    os.makedirs(os.path.join(work, "debian"), exist_ok=True)
    with open(os.path.join(work, "debian", "control"), "w", encoding="utf-8") as file:
        file.write("Source: kvlsqldbmgr\n\nPackage: kvlsqldbmgr\nArchitecture: any\n")
    found = subprocess.check_output(["dpkg-shlibdeps", "-O", *(f"-e{program}" for program in sorted(programs))],
                                    cwd=work, text=True, stderr=subprocess.DEVNULL)
    return re.search(r"^shlibs:Depends=(.*)$", found, re.MULTILINE).group(1)


def _control(package, target, libraries, architecture):
    about = PACKAGES[package]
    depends = ", ".join(part for part in (libraries, about["depends"]) if part)
    size = sum(os.lstat(os.path.join(path, name)).st_size for path, _, files in os.walk(target) for name in files)
    lines = [f"Package: {package}", "Source: kvlsqldbmgr", f"Version: {VERSION}", f"Architecture: {architecture}",
             f"Maintainer: {MAINTAINER}", f"Installed-Size: {(size + 1023) // 1024}", f"Depends: {depends}",
             *(f"{field.capitalize()}: {about[field]}" for field in ("recommends", "suggests") if field in about),
             f"Section: {about['section']}", "Priority: optional", f"Description: {about['about']}",
             *(f" {line}" for line in about["more"])]
    return "\n".join(lines) + "\n"


def _make(package, work, folder, architecture):
    target = os.path.join(work, package)
    os.makedirs(target)
    PACKAGES[package]["fill"](target)
    _documents(target, package)
    libraries = _libraries(os.path.join(work, package + ".work"), target)
    control = _control(package, target, libraries, architecture)
    sums = subprocess.check_output("find . -type f -printf '%P\\0' | LC_ALL=C sort -z | xargs -0 -r md5sum", shell=True,
                                   cwd=target, text=True)
    debian = os.path.join(target, "DEBIAN")
    os.makedirs(debian)
    for name, text in (("control", control), ("md5sums", sums)):
        with open(os.path.join(debian, name), "w", encoding="utf-8") as file:
            file.write(text)
    for script in ("postinst", "prerm", "postrm"):
        source = os.path.join(HERE, f"{package}.{script}")
        if os.path.exists(source):
            stage.copy(source, os.path.join(debian, script), 0o755)
    stamp(target)
    result = os.path.join(folder, f"{package}_{VERSION}_{architecture}.deb")
    subprocess.run(["dpkg-deb", "--root-owner-group", "-Zxz", "--build", target, result], check=True,
                   stdout=subprocess.DEVNULL, env=dict(os.environ, SOURCE_DATE_EPOCH=str(source_time())))
    return result


def build(work, folder):
    """Writes the packages into `folder` and returns their paths."""
    architecture = subprocess.check_output(["dpkg", "--print-architecture"], text=True).strip()
    return [_make(package, work, folder, architecture) for package in PACKAGES]
