# Reads every #include of the sources and fails on one that docs/architecture.md does not draw: the table there says which
# folder may use which. A folder of the table that uses nothing, or is not there, fails as well.
#
#   arrows_test.py
import os
import re
import unittest

TOP = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
DOCUMENT = os.path.join(TOP, "docs", "architecture.md")


def drawn():
    """The table "May use" of the document: for each folder the folders that it may include from."""
    with open(DOCUMENT, encoding="utf-8") as file:
        table = re.search(r"^\| Folder \| May use \|\n\|[- |]+\|\n((?:\|.*\n)+)", file.read(), re.MULTILINE)
    arrows = {}
    for line in table.group(1).splitlines():
        folder, used = (cell.strip() for cell in line.strip("|").split("|"))
        arrows[folder.strip("`")] = set(re.findall(r"`([\w/]+)`", used))
    return arrows


def sources():
    for folder in ("src", "querytool", "devserver"):
        for path, folders, files in os.walk(os.path.join(TOP, folder)):
            # The tests of the development server lie in its own folder.
            folders[:] = [name for name in folders if os.path.join(path, name) != os.path.join(TOP, "devserver", "tests")]
            for name in files:
                if name.endswith((".h", ".cpp")):
                    yield os.path.relpath(os.path.join(path, name), TOP)


def folder_of(path):
    parts = path.split("/")
    return parts[1] if parts[0] == "src" else parts[0]


def included(path):
    """The files of the tree that a file includes."""
    with open(os.path.join(TOP, path), encoding="utf-8") as file:
        for name in re.findall(r'^#include "([^"]+)"', file.read(), re.MULTILINE):
            found = [where for where in (os.path.join("src", name), name, os.path.join(os.path.dirname(path), name))
                     if os.path.exists(os.path.join(TOP, where))]
            # A header that the build puts beside the sources has no folder here.
            if found:
                yield os.path.relpath(found[0])


class Arrows(unittest.TestCase):
    def test_every_include_is_an_arrow_that_is_drawn(self):
        arrows, wrong = drawn(), []
        for path in sources():
            own = folder_of(path)
            self.assertIn(own, arrows, f"{path}: its folder is not in the table of {DOCUMENT}")
            for other in included(path):
                if folder_of(other) != own and folder_of(other) not in arrows[own]:
                    wrong.append(f"{path} includes {other}")
        self.assertEqual(wrong, [])

    def test_every_arrow_that_is_drawn_is_used(self):
        used = {}
        for path in sources():
            used.setdefault(folder_of(path), set()).update(folder_of(other) for other in included(path))
        for folder, may in drawn().items():
            self.assertEqual(may - used.get(folder, set()), set(), f"{folder} does not use them")

    def test_the_arrows_make_no_circle(self):
        arrows, done = drawn(), set()
        while len(done) < len(arrows):
            ready = {folder for folder, used in arrows.items() if folder not in done and used <= done}
            self.assertTrue(ready, f"a circle among {sorted(set(arrows) - done)}")
            done |= ready


if __name__ == "__main__":
    os.chdir(TOP)
    unittest.main(verbosity=2)
