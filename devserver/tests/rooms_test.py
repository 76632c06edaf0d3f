# Reads every #include of the development server and fails on one that devserver/docs/devserver.md does not draw: the
# table there says which room may use which. A room of the table that uses nothing, or is not there, fails as well.
#
#   rooms_test.py
import os
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tests", "architecture"))
import arrows


class Rooms(arrows.ArrowTests, unittest.TestCase):
    document = "devserver/docs/devserver.md"

    def sources(self):
        return arrows.files("devserver", without=("devserver/tests",))

    def folder_of(self, path):
        parts = path.split("/")
        if parts[0] != "devserver":
            return "/".join(parts[:2])
        if len(parts) == 2:
            return "program"
        return "/".join(parts[1:3]) if parts[1] == "tsql" else parts[1]


if __name__ == "__main__":
    arrows.run()
