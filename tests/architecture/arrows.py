# Compares the includes of a tree of sources with the table in its document that says which folder may use which. The
# table's first column is called "Folder" or "Room", its second "May use".
import os
import re
import unittest

TOP = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


def table(document):
    """For each folder of the table the folders that it may include from."""
    with open(os.path.join(TOP, document), encoding="utf-8") as file:
        rows = re.search(r"^\| (?:Folder|Room) \| May use \|\n\|[- |]+\|\n((?:\|.*\n)+)", file.read(), re.MULTILINE)
    arrows = {}
    for line in rows.group(1).splitlines():
        folder, used = (cell.strip() for cell in line.strip("|").split("|"))
        arrows[folder.strip("`")] = set(re.findall(r"`([\w/]+)`", used))
    return arrows


def included(path):
    """The files of the tree that a file includes."""
    with open(os.path.join(TOP, path), encoding="utf-8") as file:
        for name in re.findall(r'^#include "([^"]+)"', file.read(), re.MULTILINE):
            found = [where for where in (os.path.join("src", name), name, os.path.join(os.path.dirname(path), name))
                     if os.path.exists(os.path.join(TOP, where))]
            # A header that the build generates or selects for the system is not in the tree.
            if found:
                yield os.path.relpath(found[0])


class ArrowTests:
    """Mixed into a TestCase that sets `document` and defines sources() and folder_of(path)."""

    document = ""

    def arrows_of(self, path):
        """The other folders that a file includes from, each with the included file."""
        own = self.folder_of(path)
        for other in included(path):
            if self.folder_of(other) != own:
                yield self.folder_of(other), other

    def test_every_include_is_allowed(self):
        arrows, wrong = table(self.document), []
        for path in self.sources():
            own = self.folder_of(path)
            self.assertIn(own, arrows, f"{path}: its folder is not in the table of {self.document}")
            wrong += [f"{path} includes {other}" for folder, other in self.arrows_of(path) if folder not in arrows[own]]
        self.assertEqual(wrong, [])

    def test_every_entry_of_the_table_is_used(self):
        used = {}
        for path in self.sources():
            used.setdefault(self.folder_of(path), set()).update(folder for folder, _ in self.arrows_of(path))
        for folder, may in table(self.document).items():
            self.assertIn(folder, used, "the table has a folder without sources")
            self.assertEqual(may - used[folder], set(), f"{folder} does not use them")

    def test_the_table_has_no_circle(self):
        arrows, done = table(self.document), set()
        while len(done) < len(arrows):
            ready = {folder for folder, used in arrows.items() if folder not in done and used & set(arrows) <= done}
            self.assertTrue(ready, f"a circle among {sorted(set(arrows) - done)}")
            done |= ready


def files(folder, without=()):
    """The sources below a folder, except those below the folders `without`."""
    for path, folders, names in os.walk(os.path.join(TOP, folder)):
        folders[:] = [name for name in folders if os.path.relpath(os.path.join(path, name), TOP) not in without]
        for name in names:
            if name.endswith((".h", ".cpp")):
                yield os.path.relpath(os.path.join(path, name), TOP)


def run():
    os.chdir(TOP)
    unittest.main(verbosity=2)
