# Compares every #include of the sources with the table in docs/architecture.md that says which folder may use which.
# Fails on an include that the table does not allow, on an entry that no include uses, and on a circle.
#
#   arrows_test.py
import os
import re
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

    def test_the_products_tests_know_the_development_server_as_a_program_alone(self):
        wrong = []
        for path, _, files in os.walk("tests"):
            for name in files:
                if name == "CMakeLists.txt" or name.endswith((".h", ".cpp", ".cmake")):
                    with open(os.path.join(path, name), encoding="utf-8") as file:
                        if re.search(r'devsql_|^#include ".*devserver/', file.read(), re.MULTILINE):
                            wrong.append(os.path.join(path, name))
        self.assertEqual(wrong, [])


if __name__ == "__main__":
    arrows.run()
