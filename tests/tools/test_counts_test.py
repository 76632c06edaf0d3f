"""tools/test-counts counts a crash, a program that fails without a failed test, a skipped test and a program without
tests as failures, and names them.

usage: test_counts_test.py TEST_COUNTS
"""

import os
import subprocess
import sys
import tempfile
import unittest
from xml.sax.saxutils import escape

PROGRAM = sys.argv[1]
PASSES = "[ RUN      ] A.Works\n[       OK ] A.Works (0 ms)\n"
FAILS = "[ RUN      ] A.Fails\nx.cpp:1: Failure\n[  FAILED  ] A.Fails (1 ms)\n"
FAILS_LIST = "[  FAILED  ] 1 test, listed below:\n[  FAILED  ] A.Fails\n"


def case(name, status, output, message=None):
    reason = "" if message is None else f'<failure message="{message}"/>'
    return f'<testcase name="{name}" status="{status}">{reason}<system-out>{escape(output)}</system-out></testcase>'


class TestCounts(unittest.TestCase):
    def count(self, *cases):
        """The exit code, the printed text, and the list of names."""
        with tempfile.TemporaryDirectory() as folder:
            junit, names = os.path.join(folder, "junit.xml"), os.path.join(folder, "tests.txt")
            with open(junit, "w", encoding="utf-8") as file:
                file.write("<testsuite>" + "".join(cases) + "</testsuite>")
            run = subprocess.run([PROGRAM, junit, names], capture_output=True, text=True, check=False)
            self.assertEqual(run.stderr, "")
            with open(names, encoding="utf-8") as file:
                return run.returncode, run.stdout, file.read()

    def test_the_tests_of_several_programs_are_added(self):
        code, text, names = self.count(case("one", "run", PASSES + PASSES.replace("Works", "Too/0")),
                                       case("two", "run", "noise\n....\n---\nRan 3 tests in 0.1s\n\nOK\n"),
                                       case("three", "run", "a program that is one test"))
        self.assertEqual((code, text), (0, "6 passed, 0 failed\n"))
        self.assertIn("passed\tone: A.Too/0\n", names)

    def test_a_test_that_fails_is_shown_and_counted_once(self):
        code, text, _ = self.count(case("one", "fail", PASSES + FAILS + FAILS_LIST, ""))
        self.assertEqual((code, text.splitlines()[-1]), (1, "1 passed, 1 failed"))
        self.assertIn("FAILED: one: A.Fails\n", text)
        self.assertIn("x.cpp:1: Failure\n", text)

    def test_a_test_that_crashes_its_program_is_named(self):
        code, text, _ = self.count(case("one", "fail", PASSES + "[ RUN      ] A.Dies\nAddressSanitizer: oh\n", ""))
        self.assertEqual((code, text.splitlines()[-1]), (1, "1 passed, 1 failed"))
        self.assertIn("CRASHED: one: A.Dies\n", text)
        self.assertIn("AddressSanitizer: oh\n", text)

    def test_a_program_that_ends_within_a_test_has_failed(self):
        code, text, _ = self.count(case("one", "run", PASSES + "[ RUN      ] A.Exits\n"))
        self.assertEqual((code, text.splitlines()[-1]), (1, "1 passed, 2 failed"))

    def test_a_program_that_fails_after_its_tests_counts_as_a_failure(self):
        code, text, _ = self.count(case("one", "fail", PASSES + "LeakSanitizer: detected\n", "Timeout"))
        self.assertEqual((code, text.splitlines()[-1]), (1, "1 passed, 1 failed"))
        self.assertIn("FAILED: one: the program Timeout\n", text)
        self.assertIn("LeakSanitizer: detected\n", text)

    def test_a_program_that_was_not_found_counts_as_a_failure(self):
        code, text, _ = self.count(case("one", "run", PASSES), case("two", "notrun", ""))
        self.assertEqual((code, text.splitlines()[-1]), (1, "1 passed, 1 failed"))

    def test_a_skipped_test_has_not_passed(self):
        skipped = "[ RUN      ] A.Later\n[  SKIPPED ] A.Later (0 ms)\n"
        code, text, _ = self.count(case("one", "run", PASSES + skipped),
                                   case("two", "run", "Ran 2 tests in 0.1s\n\nOK (skipped=1)\n"))
        self.assertEqual((code, text.splitlines()[-1]), (1, "2 passed, 2 failed"))

    def test_a_failure_of_a_python_program_is_named(self):
        output = "FAIL: test_it (x.Y)\n---\nRan 3 tests in 1s\n\nFAILED (failures=1)\n"
        code, text, _ = self.count(case("one", "fail", output, ""))
        self.assertEqual((code, text.splitlines()[-1]), (1, "2 passed, 1 failed"))
        self.assertIn("FAILED: one: test_it (x.Y)\n", text)

    def test_programs_and_runs_without_a_test_have_failed(self):
        for cases in ((), (case("one", "run", "[==========] Running 0 tests from 0 test suites.\n"),),
                      (case("one", "run", "Ran 0 tests in 0.0s\n\nOK\n"),)):
            with self.subTest(cases=cases):
                code, text, _ = self.count(*cases)
                self.assertEqual((code, text.splitlines()[-1]), (1, f"0 passed, {len(cases)} failed"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
