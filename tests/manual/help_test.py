# The help of each program and its manual page have the same options, and every link of the manual's chapters has a target.
#
#   help_test.py BIN_FOLDER
import os
import re
import subprocess
import sys
import unittest

TOP = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
MANUAL = os.path.join(TOP, "docs", "manual")
BINARIES = None


def help_of(program, argument):
    environment = {name: value for name, value in os.environ.items() if name not in ("DISPLAY", "WAYLAND_DISPLAY")}
    done = subprocess.run([os.path.join(BINARIES, program), argument], capture_output=True, text=True, errors="replace",
                          timeout=60, stdin=subprocess.DEVNULL, env=environment)
    return done.stdout + done.stderr


def read(*path):
    with open(os.path.join(MANUAL, *path), encoding="utf-8") as file:
        return file.read()


def options_of_page(name, prefix):
    """The options of a manual page: the beginnings of the lines above a description."""
    terms = re.findall(r"^(\S.*)\n:   ", read("man", name), re.MULTILINE)
    return {word for term in terms for word in re.findall(rf"(?:^|, ){prefix}[\w?-]+", term)}


class Options(unittest.TestCase):
    def agree(self, shown, page):
        self.assertGreater(len(shown), 5, "the help was not understood")
        self.assertEqual({word.strip(", ") for word in shown}, {word.strip(", ") for word in page})

    def test_the_program(self):
        shown = set(re.findall(r"^/\w+", help_of("KVLSQLDbMgr", "/help").replace("\r", ""), re.MULTILINE))
        self.agree(shown, options_of_page("kvlsqldbmgr.1.md", "/"))

    def test_the_query_tool(self):
        shown = set(re.findall(r"^ +(-[\w?])", help_of("OSQL.EXE", "-?"), re.MULTILINE))
        self.agree(shown, options_of_page("kvl-osql.1.md", "-"))

    def test_the_development_server(self):
        shown = set(re.findall(r"^ +(--[a-z-]+)", help_of("devsqlserver", "--help").split("\n\n", 1)[1], re.MULTILINE))
        self.agree(shown, options_of_page("devsqlserver.1.md", "--"))


class Chapters(unittest.TestCase):
    def test_every_link_has_a_target(self):
        chapters = [name for name in os.listdir(MANUAL) if name.endswith(".md")]
        self.assertGreater(len(chapters), 5)
        for name in chapters:
            text = read(name)
            for target in re.findall(r"\]\(([^)#]+)(?:#[\w-]+)?\)", text):
                self.assertTrue(os.path.exists(os.path.join(MANUAL, target)), f"{name}: {target}")
            for anchor in re.findall(r"\]\(#([\w-]+)\)", text):
                anchors = [re.sub(r"[^\w -]", "", title).strip().lower().replace(" ", "-")
                           for title in re.findall(r"^#+ (.*)$", text, re.MULTILINE)]
                self.assertIn(anchor, anchors, name)


if __name__ == "__main__":
    BINARIES = os.path.abspath(sys.argv[1])
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]], verbosity=2)
