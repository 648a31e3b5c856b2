#!/usr/bin/env python3
"""Compiles code that must be refused, on every compiler, and checks the message that the compiler gives.

    run_cases.py [--compiler PROGRAM]... [--require-all] [--jobs N] CASES.cpp... -- COMPILER FLAGS

A file of cases is a translation unit in sections; it is compiled once for each section, with MISUSE set to its
number, and once with MISUSE set to 0, which must succeed: that shows the surroundings of the cases to be right.

    #if MISUSE == 1
    // EXPECT-ERROR(value as condition): deleted function.*operator bool
    void f(const qx::PropertyValue& v) { if (v) {} }
    #endif

The text after the colon is a regular expression, searched for in the lines of the diagnostic that say `error:` or
`note:`. Numbers run from 1 without gaps, and every section has one expectation.
"""

import argparse
import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys

SECTION = re.compile(r"^\s*#\s*(?:if|elif)\s+MISUSE\s*==\s*(\d+)\s*(?://.*)?$")
EXPECTATION = re.compile(r"^\s*//\s*EXPECT-ERROR\(([^)]+)\):\s*(.*\S)\s*$")
MESSAGE = re.compile(r"\b(?:fatal )?error: |\bnote: ")


class Case:
    """One compilation: section 0 must compile, every other must fail with a message that matches."""

    def __init__(self, path, number, name, pattern):
        self.path, self.number, self.name, self.pattern = path, number, name, pattern

    def run(self, compiler, flags):
        """None if all is as expected, otherwise what is not."""
        command = [compiler, "-fsyntax-only", f"-DMISUSE={self.number}", *flags, str(self.path)]
        done = subprocess.run(
            command, capture_output=True, text=True, check=False, stdin=subprocess.DEVNULL,
            env={**os.environ, "LC_ALL": "C"},
        )
        failed = done.returncode != 0
        if self.number == 0:
            return f"must compile, but does not:\n{done.stderr}" if failed else None
        if not failed:
            return "must be refused, but compiles"
        messages = [line for line in done.stderr.splitlines() if MESSAGE.search(line)]
        if any(self.pattern.search(line) for line in messages):
            return None
        return "is refused, but no message matches /{}/:\n{}".format(self.pattern.pattern, "\n".join(messages))


def read_cases(path):
    """The cases of a file; ValueError where the file is not well-formed."""
    cases = [Case(path, 0, "without misuse", None)]
    number = 0
    for line_number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        where = f"{path.name}:{line_number}"
        section, expectation = SECTION.match(line), EXPECTATION.match(line)
        if section:
            if number != len(cases) - 1:
                raise ValueError(f"{where}: section {number} has no expectation")
            number = int(section[1])
            if number != len(cases):
                raise ValueError(f"{where}: expected section {len(cases)}, found {number}")
        elif expectation:
            if number != len(cases):
                raise ValueError(f"{where}: an expectation outside a section, or a second one")
            cases.append(Case(path, number, expectation[1], re.compile(expectation[2])))
        elif "EXPECT-ERROR" in line:
            raise ValueError(f"{where}: an expectation that is not understood")
    if number == 0 or number != len(cases) - 1:
        raise ValueError(f"{path.name}: no sections, or the last one has no expectation")
    return cases


def installed(compilers, require_all):
    """The compilers that can be run; says which are skipped."""
    found = [name for name in compilers if shutil.which(name)]
    for name in compilers:
        if name not in found:
            print(f"SKIPPED: {name} is not installed")
    if not found or (require_all and len(found) != len(compilers)):
        raise ValueError("a compiler that is needed is not installed")
    return found


def parse_arguments(arguments):
    own, _, flags = "\0".join(arguments).partition("\0--\0")
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("--compiler", action="append")
    parser.add_argument("--require-all", action="store_true")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("cases", nargs="+", type=pathlib.Path)
    parsed = parser.parse_args(own.split("\0"))
    parsed.flags = flags.split("\0") if flags else []
    parsed.compiler = parsed.compiler or ["g++", "clang++-19"]
    return parsed


def main(arguments):
    options = parse_arguments(arguments)
    try:
        cases = [case for path in options.cases for case in read_cases(path)]
        compilers = installed(options.compiler, options.require_all)
    except (OSError, ValueError, re.error) as error:
        print(error, file=sys.stderr)
        return 2
    runs = [(compiler, case) for compiler in compilers for case in cases]
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        results = list(pool.map(lambda run: run[1].run(run[0], options.flags), runs))
    failures = 0
    for (compiler, case), fault in zip(runs, results):
        if fault:
            failures += 1
            print(f"FAILED: {case.path.name} [{case.number}: {case.name}] with {compiler}: {fault}")
    print(f"{len(runs) - failures} of {len(runs)} compilations as expected")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
