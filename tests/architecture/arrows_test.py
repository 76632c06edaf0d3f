# Compares every #include of the sources with the table in docs/architecture.md that says which folder may use which.
# Fails on an include that the table does not allow, on an entry that no include uses, and on a circle.
#
#   arrows_test.py
import unittest

import arrows


class Arrows(arrows.ArrowTests, unittest.TestCase):
    document = "docs/architecture.md"

    def sources(self):
        for folder in ("src", "querytool", "devserver"):
            # The tests of the development server are below its folder and are not checked.
            yield from arrows.files(folder, without=("devserver/tests",))

    def folder_of(self, path):
        parts = path.split("/")
        return parts[1] if parts[0] == "src" else parts[0]


if __name__ == "__main__":
    arrows.run()
