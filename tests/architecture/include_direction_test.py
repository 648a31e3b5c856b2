#!/usr/bin/env python3
"""Shows that include_direction.py finds what it is there to find, on small trees made for each case."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECKER = pathlib.Path(__file__).with_name("include_direction.py")
TABLE = """
[edges]
frame:
platform: frame
files: frame platform
tools: @public
tests: *
[headers]
string.h: frame
store.h: platform
"""
CLEAN = {
    "include/QXFoundation/string.h": "#include <string>\n",
    "include/QXFoundation/store.h": "#include <QXFoundation/string.h>\n",
    "frame/utf.h": "#pragma once\n",
    "frame/utf.cpp": '#include "frame/utf.h"\n#include <QXFoundation/string.h>\n#include <utf8proc.h>\n',
    "platform/store.cpp": '#include "frame/utf.h"\n',
    "files/lock.cpp": '#include "platform/store.h"\n#include <QXFoundation/store.h>\n',
    "tools/qx/main.cpp": "#include <QXFoundation/store.h>\n",
    "tests/frame/utf_test.cpp": '#include "frame/utf.h"\n#include "helper.h"\n',
    "build/release/made.cpp": '#include "files/lock.h"\n',
}


class IncludeDirection(unittest.TestCase):
    def run_on(self, changed, table=TABLE):
        """Exit code and output of the checker on the clean tree with some files added or replaced."""
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            for name, text in {**CLEAN, **changed}.items():
                path = root / name
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text)
            table_path = root / "layers.txt"
            table_path.write_text(table)
            done = subprocess.run(
                [sys.executable, CHECKER, root, table_path], capture_output=True, text=True, check=False
            )
            return done.returncode, done.stdout + done.stderr

    def assert_fault(self, changed, message, table=TABLE):
        code, output = self.run_on(changed, table)
        self.assertEqual(code, 1, output)
        self.assertIn(message, output)
        self.assertEqual(len(output.splitlines()), 1, output)

    def test_clean_tree_passes(self):
        self.assertEqual(self.run_on({}), (0, ""))

    def test_forbidden_edge_between_folders(self):
        self.assert_fault(
            {"frame/a.cpp": '\n#include "platform/store.h"\n'},
            "frame/a.cpp:2: frame may not include platform/store.h",
        )

    def test_forbidden_edge_in_a_nested_folder(self):
        self.assert_fault({"platform/plist/a.h": '#  include "files/lock.h"\n'}, "platform may not include files/lock.h")

    def test_forbidden_edge_to_a_public_header(self):
        self.assert_fault(
            {"frame/a.cpp": "#include <QXFoundation/store.h>\n"},
            "frame may not include QXFoundation/store.h, which belongs to platform",
        )

    def test_forbidden_edge_between_public_headers(self):
        self.assert_fault(
            {"include/QXFoundation/string.h": "#include <QXFoundation/store.h>\n"},
            "include/QXFoundation/string.h:1: frame may not include QXFoundation/store.h",
        )

    def test_tools_reach_no_internal_header(self):
        self.assert_fault({"tools/qx/a.cpp": '#include "frame/utf.h"\n'}, "tools may not include frame/utf.h")

    def test_library_reaches_no_tests(self):
        self.assert_fault({"files/a.cpp": '#include "tests/frame/helper.h"\n'}, "files may not include tests/")

    def test_include_with_angle_brackets_is_an_edge_too(self):
        self.assert_fault({"frame/a.cpp": "#include <platform/store.h>\n"}, "frame may not include platform/store.h")

    def test_include_relative_to_the_file(self):
        self.assert_fault({"frame/a.cpp": '#include "utf.h"\n'}, "not named from the root")
        self.assert_fault({"frame/b.cpp": '#include "../platform/store.h"\n'}, "not named from the root")

    def test_include_in_a_comment_does_not_count(self):
        text = '// #include "platform/a.h"\n/*\n#include "platform/a.h"\n*/\n'
        self.assertEqual(self.run_on({"frame/a.cpp": text}), (0, ""))

    def test_private_dependency_in_a_public_header(self):
        for name in ("utf8proc.h", "fmt/format.h", "expat.h", "uriparser/Uri.h", "boost/multiprecision/cpp_int.hpp",
                     "nlohmann/json.hpp", "CLI/CLI.hpp"):
            with self.subTest(name):
                self.assert_fault(
                    {"include/QXFoundation/string.h": f"#include <{name}>\n"}, f"the private dependency {name}"
                )

    def test_internal_header_in_a_public_header(self):
        for include in ('"frame/utf.h"', "<frame/utf.h>", '"string.h"'):
            with self.subTest(include):
                self.assert_fault({"include/QXFoundation/string.h": f"#include {include}\n"}, "which is not installed")

    def test_public_header_missing_in_the_table(self):
        self.assert_fault({"include/QXFoundation/new.h": ""}, "include/QXFoundation/new.h: missing in the table")

    def test_header_of_the_table_that_does_not_exist(self):
        self.assert_fault({}, "table: gone.h does not exist", TABLE + "gone.h: frame\n")

    def test_unknown_public_header(self):
        self.assert_fault({"tools/qx/a.cpp": "#include <QXFoundation/none.h>\n"}, "no public header of the table")

    def test_folder_missing_in_the_table(self):
        self.assert_fault({"extra/a.cpp": ""}, "extra: this folder has sources but is missing")

    def test_cycle_in_the_table(self):
        code, output = self.run_on({}, TABLE.replace("frame:\n", "frame: files\n", 1))
        self.assertEqual(code, 1)
        self.assertIn("table: frame may include itself by way of others", output)

    def test_table_that_cannot_be_read(self):
        code, output = self.run_on({}, TABLE + "[edges]\nplatform: files\n")
        self.assertEqual(code, 2)
        self.assertIn("not understood: platform: files", output)


if __name__ == "__main__":
    unittest.main()
