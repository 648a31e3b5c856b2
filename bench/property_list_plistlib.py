"""The seconds of processor time that Python's plistlib takes for an operation on FOLDER/list.xml and FOLDER/list.bin.

    property_list_plistlib.py xml_read|xml_write|binary_read|binary_write FOLDER
    property_list_plistlib.py check FOLDER      writes what it reads as FOLDER/peer.xml and FOLDER/peer.bin, and
                                                prints a number of seconds all the same, if both lists are equal
"""

import gc
import plistlib
import sys
import time


def bytes_of(folder, name):
    with open(folder + "/" + name, "rb") as file:
        return file.read()


def check(folder):
    value = plistlib.loads(bytes_of(folder, "list.bin"))
    if value != plistlib.loads(bytes_of(folder, "list.xml")):
        sys.exit("the lists differ")
    for extension, form in (("xml", plistlib.FMT_XML), ("bin", plistlib.FMT_BINARY)):
        with open(folder + "/peer." + extension, "wb") as file:
            plistlib.dump(value, file, fmt=form, sort_keys=False)
    print(1.0)


def main(operation, folder):
    if operation == "check":
        check(folder)
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
