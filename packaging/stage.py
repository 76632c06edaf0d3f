"""Lays out what the packages hold: the programs of the built trees, samples, manual."""
import os
import shutil
import struct
import subprocess

from release import TOP, source_time

MANUAL = os.path.join(TOP, "docs", "manual")


def copy(source, target, mode=0o644):
    os.makedirs(os.path.dirname(target), exist_ok=True)
    shutil.copyfile(source, target)
    os.chmod(target, mode)


def copy_tree(source, target):
    for path, folders, files in os.walk(source):
        folders.sort()
        for name in sorted(files):
            where = os.path.relpath(os.path.join(path, name), source)
            copy(os.path.join(path, name), os.path.join(target, where))


def program(source, target, strip):
    """An executable without its symbols. The tool writes a time into a Windows executable: the source's."""
    copy(source, target, 0o755)
    subprocess.run([strip, "--strip-all", target], check=True,
                   env=dict(os.environ, SOURCE_DATE_EPOCH=str(source_time())))


def samples(target):
    copy_tree(os.path.join(TOP, "samples", "sqlscripts"), os.path.join(target, "sqlscripts"))
    copy(os.path.join(TOP, "samples", "README.md"), os.path.join(target, "README.md"))


def manual(target):
    """The manual as HTML, a page for each chapter, with its pictures."""
    os.makedirs(target, exist_ok=True)
    copy(os.path.join(MANUAL, "manual.css"), os.path.join(target, "manual.css"))
    copy_tree(os.path.join(TOP, "docs", "pictures"), os.path.join(target, "pictures"))
    for name in sorted(os.listdir(MANUAL)):
        source = os.path.join(MANUAL, name)
        if name.endswith(".md"):
            page = os.path.join(target, name[:-3] + ".html")
            subprocess.run(["pandoc", "--standalone", "--from", "gfm", "--to", "html5", "--css", "manual.css",
                            "--lua-filter", os.path.join(TOP, "packaging", "html_links.lua"), "--output", page, source],
                           check=True)


def man_pages(target, section_1):
    """The man pages of the programs named, made from docs/manual/man."""
    folder = os.path.join(target, "usr/share/man/man1")
    os.makedirs(folder, exist_ok=True)
    for name in section_1:
        page = os.path.join(folder, name + ".1")
        subprocess.run(["pandoc", "--standalone", "--from", "markdown", "--to", "man", "--output", page,
                        os.path.join(MANUAL, "man", name + ".1.md")], check=True)
        subprocess.run(["gzip", "--no-name", "-9", page], check=True)


def windows(target, tree):
    """What the .msi and the .zip hold. `tree` is the preset of the build tree."""
    strip = "x86_64-w64-mingw32-strip" if tree == "windows" else "i686-w64-mingw32-strip"
    built = os.path.join(TOP, "build", tree, "bin")
    program(os.path.join(built, "KVLSQLDbMgr.exe"), os.path.join(target, "KVLSQLDbMgr.exe"), strip)
    program(os.path.join(built, "OSQL.EXE"), os.path.join(target, "Binn", "OSQL.EXE"), strip)
    samples(os.path.join(target, "samples"))
    manual(os.path.join(target, "manual"))
    copy(os.path.join(TOP, "docs", "third-party.md"), os.path.join(target, "third-party.md"))


def icons(target, name):
    """The largest picture of the program's icon, which is a PNG already."""
    with open(os.path.join(TOP, "src", "main", "icons", "program.ico"), "rb") as file:
        icon = file.read()
    count = struct.unpack_from("<H", icon, 4)[0]
    for number in range(count):
        width, _, _, _, _, _, size, offset = struct.unpack_from("<BBBBHHII", icon, 6 + 16 * number)
        picture = icon[offset:offset + size]
        if width == 0 and picture.startswith(b"\x89PNG"): # 0 stands for 256
            path = os.path.join(target, "256x256", "apps", name + ".png")
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "wb") as file:
                file.write(picture)
            return
    raise RuntimeError("program.ico has no picture of 256 pixels")
