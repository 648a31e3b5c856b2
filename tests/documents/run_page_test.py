"""run_page.py reports what is wrong with a page, and nothing else."""

import pathlib
import subprocess
import sys
import tempfile

from judging import Judgement

runner = pathlib.Path(__file__).with_name("run_page.py")
compiler = sys.argv[1]
program = "```cpp\n#include <cstdio>\nint main() { std::puts(\"%s\"); return %d; }\n```\n"

# What each page holds, and what is said of it; nothing for a page that is right.
cases = [
    (program % ("a", 0) + "\nIt prints\n\n```text\na\n```\n", None),
    (program % ("a", 0) + "```text\nb\n```\n", "-b\n+a"),
    (program % ("a", 0) + "```text\na\nb\n```\n", "the output is another"),
    (program % ("a", 0), "no ```text block"),
    (program % ("a", 0) + program % ("a", 0) + "```text\na\n```\n", "no ```text block"),
    (program % ("a", 3) + "```text\na\n```\n", "ended with 3"),
    ("```cpp\nint main() { return x; }\n```\n```text\n```\n", "page.md:2"),
    ("```cpp\nint main() { int unused; }\n```\n```text\n```\n", "unused"),
    ("```cpp\nint main() {}\n", "the block does not end"),
    ("```console\n$ echo a; echo b >&2\na\nb\n$ true\n```\n", None),
    ("```console\n$ echo a\nb\n```\n", "-b\n+a"),
    ("```console\n$ echo a\n```\n", "+a"),
    ("<!-- file: x.txt -->\n```json\n[]\n```\n\n```console\n$ cat x.txt\n[]\n$ echo $HOME/* | sed s,.*/,,\nx.txt\n```\n", None),
    ("```sh\nnot run\n```\n", None),
]

judgement = Judgement("pages")
with tempfile.TemporaryDirectory() as folder:
    page = pathlib.Path(folder) / "page.md"
    for text, remark in cases:
        page.write_text(text)
        judgement.add(text, remark, subprocess.run(
            [sys.executable, str(runner), str(page), "--compiler", compiler], capture_output=True, text=True))
judgement.end()
