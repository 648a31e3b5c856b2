"""Every figure of the library that a table of the report wants is one that its program measures.

    names_test.py FOLDER_OF_THE_PROGRAMS
"""

import pathlib
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[2] / "bench" / "report"))

from model import name_of
from results import HOW
from sections import SECTIONS

programs = pathlib.Path(sys.argv[1])
faults = []
count = 0
for section in SECTIONS:
    for program in section.programs:
        if program.kind != "benchmark":
            continue
        command = [str(programs / f"bench_{program.name}"), "--benchmark_list_tests=true"]
        listed = subprocess.run(command, capture_output=True, text=True, check=True).stdout.splitlines()
        names = {HOW.sub("", line) for line in listed}
        for table in section.tables:
            # What depends on a peer is left out where the peer is not installed.
            rows = [row for row in table.rows if table.program == program.name and row.peer is None]
            for row in rows:
                wanted = {name_of(table, row, index) for index in range(len(table.columns))} - {None}
                count += len(wanted)
                faults += [f"bench_{program.name} has no {name} ({table.title})" for name in sorted(wanted - names)]
if faults:
    sys.exit("\n".join(faults))
print(f"{count} benchmarks are there")
