"""Runs the examples of a document and compares what they print with what the document says they print.

    run_page.py PAGE --compiler CXX [--include DIR] [--library DIR] [--tools DIR]

Every ```cpp block is a whole program, and the next block, ```text, is its output. In a ```console block, lines that
begin with "$ " are commands of the shell, and those below are their output, errors included. A block of any other
kind behind a line `<!-- file: NAME -->` is the content of that file. All of a page's examples run in the order of the
page, in one folder that is empty at first and is the user's home, in UTC and in the C locale.

    <!-- file: people.json -->
    ```json
    [{"name": "Ann"}]
    ```
"""

import argparse
import dataclasses
import difflib
import os
import pathlib
import re
import subprocess
import sys
import tempfile


@dataclasses.dataclass
class Block:
    kind: str
    line: int  # of its first line of content, counted from 1
    text: str
    file: str | None


class PageError(Exception):
    pass


def blocks_of(page: str) -> list[Block]:
    blocks: list[Block] = []
    opened = None
    file = None
    for number, line in enumerate(page.split("\n"), 1):
        if opened is not None:
            if line == "```":
                blocks.append(opened)
                opened = None
            else:
                opened.text += line + "\n"
        elif line.startswith("```"):
            opened = Block(line[3:].strip(), number + 1, "", file)
            file = None
        elif found := re.fullmatch(r"<!-- file: ([\w.-]+) -->", line):
            file = found.group(1)
    if opened is not None:
        raise PageError(f"line {opened.line - 1}: the block does not end")
    return blocks


class Page:
    def __init__(self, path: pathlib.Path, options: argparse.Namespace, folder: pathlib.Path):
        self.path = path
        self.options = options
        self.folder = folder
        self.programs = folder.parent / "programs"
        self.programs.mkdir()
        self.included = [f"-I{options.include}"] if options.include else []
        self.linked = [f"-L{options.library}", "-lqxfoundation"] if options.library else []
        self.environment = {
            "PATH": os.pathsep.join(filter(None, [options.tools, "/usr/bin", "/bin"])),
            "HOME": str(folder), "TMPDIR": str(folder), "TZ": "UTC", "LC_ALL": "C",
            "LD_LIBRARY_PATH": options.library,
        }

    def run(self) -> int:
        """Returns the number of examples."""
        count = 0
        blocks = blocks_of(self.path.read_text())
        for index, block in enumerate(blocks):
            if block.file is not None:
                (self.folder / block.file).write_text(block.text)
            elif block.kind == "cpp":
                output = blocks[index + 1] if index + 1 < len(blocks) else None
                if output is None or output.kind != "text":
                    raise PageError(f"line {block.line}: no ```text block with the program's output follows")
                self.compare(output, self.output_of_program(block))
                count += 1
            elif block.kind == "console":
                self.run_console(block)
                count += 1
        return count

    def output_of_program(self, block: Block) -> str:
        source = self.programs / f"line{block.line}.cpp"
        program = source.with_suffix("")
        source.write_text(f'#line {block.line} "{self.path.name}"\n{block.text}')
        self.call(block, [*self.options.compiler, "-std=c++20", "-O0", "-Wall", "-Wextra", "-Werror", "-pthread",
                          *self.included, str(source), "-o", str(program), *self.linked], None)
        return self.call(block, [str(program)], self.environment)

    def run_console(self, block: Block) -> None:
        got = ""
        for line in block.text.splitlines():
            if not line.startswith("$ "):
                continue
            done = subprocess.run(["bash", "-c", line[2:]], cwd=self.folder, env=self.environment, text=True, timeout=60,
                                  stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
            got += line + "\n" + done.stdout
        self.compare(block, got)

    def call(self, block: Block, command: list[str], environment: dict[str, str] | None) -> str:
        done = subprocess.run(command, cwd=self.folder, env=environment, text=True, timeout=120,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        if done.returncode != 0:
            raise PageError(f"line {block.line}: {command[0]} ended with {done.returncode}\n{done.stdout}{done.stderr}")
        return done.stdout

    def compare(self, expected: Block, got: str) -> None:
        """Blanks at the ends of lines are nothing that a page shows."""
        shown = [line.rstrip() for line in expected.text.splitlines()]
        printed = [line.rstrip() for line in got.splitlines()]
        if printed == shown:
            return
        lines = difflib.unified_diff(shown, printed, "the page", "the run", lineterm="")
        raise PageError(f"line {expected.line}: the output is another\n" + "\n".join(lines))


def main() -> None:
    parser = argparse.ArgumentParser()
    parser.add_argument("page", type=pathlib.Path)
    parser.add_argument("--compiler", required=True, type=str.split)
    parser.add_argument("--include", default="")
    parser.add_argument("--library", default="")
    parser.add_argument("--tools", default="")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as root:
        folder = pathlib.Path(root) / "home"
        folder.mkdir()
        try:
            count = Page(options.page, options, folder).run()
        except (PageError, OSError, subprocess.TimeoutExpired) as failure:
            sys.exit(f"{options.page}: {failure}")
    print(f"{options.page.name}: {count} examples")


if __name__ == "__main__":
    main()
