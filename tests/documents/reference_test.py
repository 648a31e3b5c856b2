"""The settings of the API reference let no public entity pass without a comment, and ask for none elsewhere."""

import pathlib
import subprocess
import tempfile

from judging import Judgement

root = pathlib.Path(__file__).parents[2]

GOOD = """// A header.
//
//     a->b("<x> @y #z 50%");     // \\examples and `code` of any kind
#pragma once
namespace qx {
namespace detail {
struct Inner { int nobody; };
}
// A thing.
class Thing {
 public:
  // Says \\a, @b, <c>, #d, %e, e::f and `g<h, i>`.
  int say() const;
  int sayAgain() const;

 private:
  int hidden_;
};

// Kinds.
enum class Kind {
  one,  // the first
  two,  // the other,
        // with more to say
};

// How many.
inline int count(int n) {
  // Nobody's documentation.
  if (n < 0) {
    return 0;
  }
  return n;
}
}  // namespace qx
"""

# What is replaced in the good header, by what, and what is said then.
cases = [
    ("", "", None),
    ("// A thing.\n", "", "Compound qx::Thing is not documented"),
    ("  // Says \\a, @b, <c>, #d, %e, e::f and `g<h, i>`.\n", "", "say"),
    ("  int sayAgain() const;\n", "\n  int sayAgain() const;\n", "sayAgain"),
    ("// How many.\n", "", "count"),
    ("// How many.\n", "// How many.\n\n", "count"),
    ("// Kinds.\n", "", "Kind"),
]

settings = (root / "docs" / "Doxyfile").read_text()
judgement = Judgement("headers")
with tempfile.TemporaryDirectory() as folder:
    header = pathlib.Path(folder) / "thing.h"
    for old, new, remark in cases:
        assert old in GOOD
        header.write_text(GOOD.replace(old, new, 1) if old else GOOD)
        judgement.add(f"{old!r} replaced by {new!r}", remark, subprocess.run(
            ["doxygen", "-"], cwd=root, capture_output=True, text=True,
            input=f"{settings}\nINPUT = {header}\nOUTPUT_DIRECTORY = {folder}\nUSE_MDFILE_AS_MAINPAGE =\n"))
judgement.end()
