"""Property lists as Python's own reader and writer see them.

    peer.py dump FILE...        prints a line for each list
    peer.py make FOLDER COUNT   writes COUNT lists as FOLDER/N.xml and FOLDER/N.bin, and prints a line for each
    peer.py dates FOLDER        the same for one list of dates, N being "dates"

The lines are those of dump.h.
"""

import datetime
import plistlib
import random
import struct
import sys

REFERENCE = datetime.datetime(2001, 1, 1)


def dump(value):
    if isinstance(value, bool):
        return "true" if value else "false"
    if isinstance(value, int):
        return "i%d" % value
    if isinstance(value, float):
        return "rnan" if value != value else "r" + struct.pack(">d", value).hex()
    if isinstance(value, str):
        return "s" + value.encode().hex()
    if isinstance(value, bytes):
        return "b" + value.hex()
    if isinstance(value, datetime.datetime):
        return "d%d" % ((value - REFERENCE) // datetime.timedelta(microseconds=1))
    if isinstance(value, list):
        return "[" + "".join(dump(inner) + "," for inner in value) + "]"
    if isinstance(value, dict):
        return "{" + "".join(key.encode().hex() + "=" + dump(inner) + "," for key, inner in value.items()) + "}"
    raise TypeError(type(value))


def text(rng):
    alphabet = rng.choice(["abc <>&\"'\t\n", "é ÿ\x7f\x80\xa0z", "€абв\U0001F600\uffee"])
    return "".join(rng.choice(alphabet) for _ in range(rng.choice([0, 1, 3, 14, 15, 16, 40, 300])))


def scalar(rng):
    kind = rng.randrange(7)
    if kind == 0:
        return text(rng)
    if kind == 1:
        return rng.choice([0, 1, 127, 128, 255, 256, 65535, 65536, 2**32 - 1, 2**32, 2**63 - 1, 2**63, 2**64 - 1,
                           -1, -128, -2**31, -2**63, rng.randrange(-2**63, 2**64)])
    if kind == 2:
        return rng.choice([0.0, 0.1, 1e300, 5e-324, float("inf"), float("-inf"), float("nan"),
                           struct.unpack(">d", struct.pack(">Q", rng.randrange(0x7FE0000000000000)))[0]])
    if kind == 3:
        return rng.random() < 0.5
    if kind == 4:
        return datetime.datetime(1869, 1, 1) + datetime.timedelta(seconds=rng.randrange(331 * 31556952))
    return rng.randbytes(rng.choice([0, 1, 2, 3, 14, 15, 16, 57, 300]))


def tree(rng, depth):
    kind = rng.randrange(4) if depth > 0 else 3
    size = rng.choice([0, 1, 2, 14, 15, 16, 40] if depth == 1 else [1, 2, 3])
    if kind == 0:
        return [tree(rng, depth - 1) for _ in range(size)]
    if kind == 1:
        return {text(rng): tree(rng, depth - 1) for _ in range(size)}
    return scalar(rng)


def dates():
    some = []
    for year in range(1869, 2200):
        for month, day, hour, minute, second in [(1, 1, 0, 0, 0), (2, 28, 23, 59, 59), (3, 1, 0, 0, 1),
                                                 (7, 15, 12, 34, 56), (12, 31, 23, 59, 59)]:
            some.append(datetime.datetime(year, month, day, hour, minute, second))
    return some


def write(folder, name, value):
    for extension, form in (("xml", plistlib.FMT_XML), ("bin", plistlib.FMT_BINARY)):
        with open("%s/%s.%s" % (folder, name, extension), "wb") as file:
            plistlib.dump(value, file, fmt=form, sort_keys=False)
    print(dump(value))


def main(command, *arguments):
    if command == "dump":
        for path in arguments:
            with open(path, "rb") as file:
                print(dump(plistlib.load(file)))
    elif command == "make":
        for number in range(int(arguments[1])):
            rng = random.Random(number)
            write(arguments[0], str(number), tree(rng, 4))
    elif command == "dates":
        write(arguments[0], "dates", dates())


main(*sys.argv[1:])
