# Reads every #include of the sources and fails on one that docs/architecture.md does not draw: the table there says which
# folder may use which. A folder of the table that uses nothing, or is not there, fails as well.
#
#   arrows_test.py
import unittest

import arrows


class Arrows(arrows.ArrowTests, unittest.TestCase):
    document = "docs/architecture.md"

    def sources(self):
        for folder in ("src", "querytool", "devserver"):
            # The tests of the development server lie in its own folder.
            yield from arrows.files(folder, without=("devserver/tests",))

    def folder_of(self, path):
        parts = path.split("/")
        return parts[1] if parts[0] == "src" else parts[0]


if __name__ == "__main__":
    arrows.run()
