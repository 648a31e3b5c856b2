"""The seconds of processor time that Python's plistlib takes for an operation on FOLDER/list.xml and FOLDER/list.bin.

    property_list_plistlib.py xml_read|xml_write|binary_read|binary_write|nothing FOLDER
"""

import gc
import plistlib
import sys
import time


def bytes_of(folder, name):
    with open(folder + "/" + name, "rb") as file:
        return file.read()


def main(operation, folder):
    if operation == "nothing":
        print(1.0)
        return
    form = plistlib.FMT_XML if operation.startswith("xml") else plistlib.FMT_BINARY
    data = bytes_of(folder, "list.xml" if form == plistlib.FMT_XML else "list.bin")
    if operation.endswith("read"):
        work = lambda: plistlib.loads(data, fmt=form)
    else:
        value = plistlib.loads(data, fmt=form)
        work = lambda: plistlib.dumps(value, fmt=form, sort_keys=False)
    gc.disable()
    start = time.process_time()
    work()
    print(time.process_time() - start)


main(*sys.argv[1:])
