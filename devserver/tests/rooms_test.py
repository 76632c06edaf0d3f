# Reads every #include of the development server and fails on one that devserver/docs/devserver.md does not allow: the
# table there says which room may use which. It also fails on an entry of the table that is not used, on a function of
# more than 50 lines, and on a file of more than 600 lines.
#
#   rooms_test.py
import os
import re
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


def functions(path):
    """Yields the name of every function and the number of lines between its braces. clang-format puts the first line of a
    function, and the brace that ends it, at the same indentation."""
    begin = None
    with open(os.path.join(arrows.TOP, path), encoding="utf-8") as file:
        for number, line in enumerate(file.read().splitlines()):
            first = re.match(r"( {0,4})\S.*[^=({ ] \{$", line)
            if begin is None and first and not re.match(r" *(namespace|struct|class|enum|union|extern)\b", line):
                begin = number, first[1], line.strip(" {")
            elif begin is not None and line.startswith(begin[1] + "}"):
                yield begin[2], number - begin[0] - 1
                begin = None


class Sizes(unittest.TestCase):
    def test_every_function_fits_on_a_screen(self):
        long = [f"{path}: {length} lines of {name}" for path in Rooms().sources() for name, length in functions(path)
                if length > 50]
        self.assertEqual(long, [])

    def test_functions_are_found(self):
        sizes = dict(functions("devserver/tsql/session/interruption.cpp"))
        self.assertEqual(sizes["void Interruption::Check() const"], 3)

    def test_no_file_is_longer_than_600_lines(self):
        for path in arrows.files("devserver"):
            with open(os.path.join(arrows.TOP, path), encoding="utf-8") as file:
                self.assertLessEqual(len(file.readlines()), 600, path)


if __name__ == "__main__":
    arrows.run()
