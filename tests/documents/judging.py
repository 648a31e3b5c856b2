"""What the tests of the checkers share: whether a run of one judged its input as it should."""

import sys


class Judgement:
    def __init__(self, what):
        self.what = what
        self.count = 0
        self.faults = []

    def add(self, case, remark, done):
        """`done` is the run; it should pass where `remark` is None, and otherwise refuse with that remark."""
        self.count += 1
        said = done.stdout + done.stderr
        if remark is None:
            if done.returncode != 0:
                self.faults.append(f"{case}\nshould pass:\n{said}")
        elif done.returncode == 0 or remark not in said:
            self.faults.append(f"{case}\nshould be refused with {remark!r}:\n{said}")

    def end(self):
        if self.faults:
            sys.exit("\n".join(self.faults))
        print(f"{self.count} {self.what} judged as they should be")
