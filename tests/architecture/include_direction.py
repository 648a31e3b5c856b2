#!/usr/bin/env python3
"""Checks every include of a source tree against the table of allowed edges.

    include_direction.py ROOT TABLE

Prints one line for each include that the table does not allow, and exits with 1 if there is any.
"""

import pathlib
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
BLOCK_COMMENT = re.compile(r"/\*.*?\*/", re.DOTALL)
SOURCE_SUFFIXES = {".h", ".hpp", ".cpp", ".cc", ".inc"}
NOT_SOURCES = {"build", "cmake", "docs", "scripts", "include"}
PUBLIC = "QXFoundation/"
# Libraries that serve the implementation: a user of the public headers need not have them.
PRIVATE_DEPENDENCY = re.compile(r"^(utf8proc|expat|uriparser/.*|fmt/.*|boost/.*|nlohmann/.*|CLI/.*)(\.h|\.hpp)?$")


class Table:
    """The declared edges, and the folder that each public header belongs to."""

    def __init__(self, path):
        self.edges = {}
        self.headers = {}
        sections = {"[edges]": self._edge, "[headers]": self._header}
        take = None
        for number, line in enumerate(path.read_text().splitlines(), 1):
            line = line.split("#", 1)[0].strip()
            if line in sections:
                take = sections[line]
            elif line:
                name, colon, rest = (part.strip() for part in line.partition(":"))
                if not colon or take is None or not take(name, rest.split()):
                    raise ValueError(f"{path.name}:{number}: not understood: {line}")

    def _edge(self, folder, targets):
        return self.edges.setdefault(folder, set(targets)) == set(targets)

    def _header(self, header, owners):
        return len(owners) == 1 and self.headers.setdefault(header, owners[0]) == owners[0]

    def allows(self, source, target, is_public):
        targets = self.edges[source]
        return source == target or target in targets or "*" in targets or (is_public and "@public" in targets)

    def faults(self):
        """What is wrong with the table itself: unknown folders, and folders that include each other."""
        for folder, targets in self.edges.items():
            for target in targets - self.edges.keys() - {"*", "@public"}:
                yield f"table: {folder} may include {target}, which is no folder of the table"
        for header, owner in self.headers.items():
            if owner not in self.edges:
                yield f"table: {header} belongs to {owner}, which is no folder of the table"
        for folder in self.edges:
            if folder in self._reachable(folder):
                yield f"table: {folder} may include itself by way of others"

    def _reachable(self, start):
        seen, waiting = set(), list(self.edges[start])
        while waiting:
            folder = waiting.pop()
            if folder not in seen:
                seen.add(folder)
                waiting.extend(self.edges.get(folder, ()))
        return seen


def includes(path):
    """(line number, delimiter, name) of each include of a file; those in comments do not count."""
    text = path.read_text(encoding="utf-8")
    text = BLOCK_COMMENT.sub(lambda comment: "\n" * comment[0].count("\n"), text)
    for number, line in enumerate(text.splitlines(), 1):
        match = INCLUDE.match(line)
        if match:
            yield number, match[1], match[2]


def sources(folder):
    return sorted(path for path in folder.rglob("*") if path.suffix in SOURCE_SUFFIXES and path.is_file())


def edge_fault(table, owner, delimiter, name):
    """What is wrong with an include in a file of the folder `owner`, or None."""
    if name.startswith(PUBLIC):
        header = name.removeprefix(PUBLIC)
        target = table.headers.get(header)
        if target is None:
            return f"{name} is no public header of the table"
        if target in table.edges and not table.allows(owner, target, is_public=True):
            return f"{owner} may not include {name}, which belongs to {target}"
        return None
    target, slash, _ = name.partition("/")
    if slash and target in table.edges:
        if not table.allows(owner, target, is_public=False):
            return f"{owner} may not include {name}"
    elif delimiter == '"' and "*" not in table.edges[owner]:
        return f'"{name}" is not named from the root of the repository'
    return None


def public_header_faults(root, table):
    folder = root / "include" / "QXFoundation"
    found = {path.relative_to(folder).as_posix(): path for path in sources(folder)}
    for header in sorted(table.headers.keys() - found.keys()):
        yield f"table: {header} does not exist"
    for header, path in found.items():
        owner = table.headers.get(header)
        if owner is None:
            yield f"include/QXFoundation/{header}: missing in the table of public headers"
        for number, delimiter, name in includes(path):
            where = f"include/QXFoundation/{header}:{number}"
            if PRIVATE_DEPENDENCY.match(name):
                yield f"{where}: a public header may not include the private dependency {name}"
            elif not name.startswith(PUBLIC) and (delimiter == '"' or name.partition("/")[0] in table.edges):
                yield f"{where}: a public header may not include {name}, which is not installed"
            elif owner in table.edges:
                fault = edge_fault(table, owner, delimiter, name)
                if fault:
                    yield f"{where}: {fault}"


def folder_faults(root, table):
    for folder in sorted(path for path in root.iterdir() if path.is_dir()):
        if folder.name in NOT_SOURCES or folder.name.startswith("."):
            continue
        files = sources(folder)
        if files and folder.name not in table.edges:
            yield f"{folder.name}: this folder has sources but is missing in the table of edges"
            continue
        for path in files:
            for number, delimiter, name in includes(path):
                fault = edge_fault(table, folder.name, delimiter, name)
                if fault:
                    yield f"{path.relative_to(root).as_posix()}:{number}: {fault}"


def check(root, table_path):
    """All faults of the tree, in a fixed order."""
    table = Table(table_path)
    faults = list(table.faults())
    return faults or [*public_header_faults(root, table), *folder_faults(root, table)]


def main(arguments):
    if len(arguments) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    try:
        faults = check(pathlib.Path(arguments[0]), pathlib.Path(arguments[1]))
    except (OSError, ValueError) as error:
        print(error, file=sys.stderr)
        return 2
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
