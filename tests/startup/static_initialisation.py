"""Loading the library runs nothing: it has no functions that construct objects when it is loaded.

    static_initialisation.py LIBRARY

The compiler's own start-up code has one entry in .init_array, which registers nothing here; every entry beyond is a
translation unit with something to initialise. Where the symbols are there, they are named.
"""

import re
import subprocess
import sys

library = sys.argv[1]
sections = subprocess.run(["readelf", "--sections", "--wide", library], check=True, capture_output=True, text=True).stdout
names = subprocess.run(["nm", "--demangle", library], check=True, capture_output=True, text=True).stdout

found = re.search(r"\.init_array\s+INIT_ARRAY\s+\S+\s+\S+\s+([0-9a-f]+)", sections)
entries = int(found.group(1), 16) // 8 if found else 0
initialisers = re.findall(r"\b_GLOBAL__(?:sub_)?I_\S+", names)
if entries > 1 or initialisers:
    sys.exit(f"{library} has {entries} entries in .init_array; initialised are {', '.join(initialisers) or 'unknown units'}")
print(f"{entries} entry in .init_array")
