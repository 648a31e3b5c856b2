"""The example in README.md is the program examples/readme.cpp, word for word: what a newcomer copies is what is compiled."""

import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
block = re.search(r"<!-- examples/readme\.cpp -->\n```cpp\n(.*?)```", (root / "README.md").read_text(), re.DOTALL)
program = (root / "examples" / "readme.cpp").read_text()
if block is None or block.group(1) != program:
    sys.exit("README.md does not show examples/readme.cpp as it is")
