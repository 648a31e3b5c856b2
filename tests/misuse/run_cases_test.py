#!/usr/bin/env python3
"""Shows that run_cases.py tells refused code from accepted code, and the right message from another."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

RUNNER = pathlib.Path(__file__).with_name("run_cases.py")
COMPILER = "g++"
GOOD = """
struct Value { explicit operator bool() const = delete; };
inline void use(const Value&) {}
#if MISUSE == 1
// EXPECT-ERROR(value as condition): deleted function
inline void f(const Value& v) { if (v) use(v); }
#endif
#if MISUSE == 2
// EXPECT-ERROR(text as value): 'use' was not declared|could not convert|invalid initialization
inline void g() { use("text"); }
#endif
"""


class RunCases(unittest.TestCase):
    def run_on(self, text, *options, flags=("-std=c++20",)):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "cases.cpp"
            path.write_text(text)
            command = [sys.executable, RUNNER, *(options or ["--compiler", COMPILER]), path, "--", *flags]
            done = subprocess.run(command, capture_output=True, text=True, check=False)
            return done.returncode, done.stdout + done.stderr

    def assert_fault(self, code, message, text, *options, flags=("-std=c++20",)):
        got, output = self.run_on(text, *options, flags=flags)
        self.assertEqual(got, code, output)
        self.assertIn(message, output)

    def test_refused_code_with_the_right_message_passes(self):
        code, output = self.run_on(GOOD)
        self.assertEqual(code, 0, output)
        self.assertIn("3 of 3 compilations as expected", output)

    def test_accepted_code_fails(self):
        self.assert_fault(1, "[1: value as condition] with g++: must be refused, but compiles",
                          GOOD.replace(" = delete", ""), flags=("-std=c++20",))

    def test_another_message_fails(self):
        self.assert_fault(1, "no message matches /nothing like this/", GOOD.replace("deleted function", "nothing like this"))

    def test_the_source_shown_with_the_message_does_not_count(self):
        self.assert_fault(1, "no message matches", GOOD.replace("deleted function", r"use\(v\)"))

    def test_surroundings_that_do_not_compile_fail(self):
        self.assert_fault(1, "[0: without misuse] with g++: must compile", GOOD + "broken;\n")

    def test_flags_reach_the_compiler(self):
        self.assert_fault(1, "[0: without misuse]", GOOD, flags=("-std=c++20", "-DValue=int"))

    def test_absent_compiler_is_named_and_skipped(self):
        code, output = self.run_on(GOOD, "--compiler", COMPILER, "--compiler", "no-such-compiler")
        self.assertEqual(code, 0, output)
        self.assertIn("SKIPPED: no-such-compiler is not installed", output)

    def test_absent_compiler_fails_where_all_are_required(self):
        self.assert_fault(2, "not installed", GOOD, "--require-all", "--compiler", COMPILER, "--compiler", "no-such-one")

    def test_no_compiler_at_all_fails(self):
        self.assert_fault(2, "not installed", GOOD, "--compiler", "no-such-compiler")

    def test_files_that_are_not_well_formed(self):
        expectation = "// EXPECT-ERROR(a): b\n"
        section = "#if MISUSE == {}\n"
        for name, text, message in (
            ("no sections", "int x;\n", "no sections"),
            ("gap in the numbers", section.format(2) + expectation, "expected section 1, found 2"),
            ("section without expectation", section.format(1), "has no expectation"),
            ("expectation outside", expectation, "outside a section"),
            ("two expectations", section.format(1) + 2 * expectation, "or a second one"),
            ("misspelt expectation", section.format(1) + "// EXPECT-ERROR: b\n", "not understood"),
        ):
            with self.subTest(name):
                self.assert_fault(2, message, text)


if __name__ == "__main__":
    unittest.main()
