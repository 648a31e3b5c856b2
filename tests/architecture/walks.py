#!/usr/bin/env python3
"""Checks that the walks through the code, which a document has as tables, name functions and files that there are.

    walks.py ROOT DOCUMENT

A row of a walk ends with a cell of functions and a cell of files, both in backquotes. Each function must be found in one of
the files by its last name, and for "Class::function" with its class.
"""

import pathlib
import re
import sys

ROW = re.compile(r"^\|.*\|((?: *`[\w:()]+`,?)+) *\|((?: *`[\w./]+`,?)+) *\|$", re.MULTILINE)
QUOTED = re.compile(r"`([^`]+)`")
FEWEST = 10  # rows: with fewer the form of the document has changed, and nothing is looked at


def is_in(function, text):
    name = re.escape(function.removesuffix("()"))
    pattern = name + (r"\(\)" if function.endswith("()") else r"\b")
    return re.search(rf"(?<![\w:]){pattern}", text) or (
        "::" in function and is_in(function.split("::")[-1], text) and re.search(rf"\bstruct {function.split('::')[0]}\b", text)
    )


def faults(root, document):
    rows = ROW.findall(document)
    if len(rows) < FEWEST:
        yield f"only {len(rows)} rows of walks are found"
    for functions, files in rows:
        names = QUOTED.findall(files)
        missing = [name for name in names if not (root / name).is_file()]
        yield from (f"there is no {name}" for name in missing)
        text = "".join((root / name).read_text() for name in names if name not in missing)
        yield from (f"{function} is not in {', '.join(names)}" for function in QUOTED.findall(functions) if not is_in(function, text))


def main(arguments):
    if len(arguments) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    found = list(faults(pathlib.Path(arguments[0]), pathlib.Path(arguments[1]).read_text()))
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
