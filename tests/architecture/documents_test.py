#!/usr/bin/env python3
"""Shows that picture.py and walks.py find what is wrong with a document, and draw what the table says."""

import pathlib
import subprocess
import sys
import tempfile
import unittest
import xml.dom.minidom

HERE = pathlib.Path(__file__).parent
TABLE = """
[edges]
frame:
platform: frame
files: frame platform
values: frame platform
tools: @public
tests: *
[headers]
"""
ROW = "| A thing happens. | `thing`, `Store::write` | `frame/thing.cpp` |\n"
CODE = "void thing() {}\nvoid Store::write() {}\n"


def run(script, *arguments):
    done = subprocess.run([sys.executable, HERE / script, *arguments], capture_output=True, text=True, check=False)
    return done.returncode, done.stdout + done.stderr


class Documents(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.root = pathlib.Path(self.folder.name)

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(text)
        return path

    def walk(self, rows):
        self.write("frame/thing.cpp", CODE)
        return run("walks.py", self.root, self.write("walk.md", rows))

    def test_picture_shows_each_folder_once_and_is_recognised(self):
        code, drawn = run("picture.py", self.write("layers.txt", TABLE))
        self.assertEqual(code, 0, drawn)
        texts = [text.firstChild.data for text in xml.dom.minidom.parseString(drawn).getElementsByTagName("text")]
        for folder in ("frame", "platform", "files", "values"):
            self.assertEqual(texts.count(folder + "/"), 1, texts)
        self.assertEqual(run("picture.py", self.root / "layers.txt", self.write("a.svg", drawn)), (0, ""))

    def test_picture_of_another_table_is_found(self):
        _, drawn = run("picture.py", self.write("layers.txt", TABLE))
        self.write("layers.txt", TABLE.replace("values:", "dates:"))
        code, output = run("picture.py", self.root / "layers.txt", self.write("a.svg", drawn))
        self.assertEqual(code, 1)
        self.assertIn("does not show the table", output)

    def test_walk_that_is_true_passes(self):
        self.assertEqual(self.walk(ROW * 10)[0], 0)

    def test_walk_with_other_names_is_found(self):
        for name, message in {
            "`thing`": "`thin`",
            "`Store::write`": "`Shop::write`",
            "`frame/thing.cpp`": "`frame/thin.cpp`",
        }.items():
            code, output = self.walk(ROW * 10 + ROW.replace(name, message))
            self.assertEqual(code, 1)
            self.assertIn(message.strip("`"), output)

    def test_document_without_walks_is_found(self):
        self.assertEqual(self.walk("nothing\n")[0], 1)


if __name__ == "__main__":
    unittest.main()
