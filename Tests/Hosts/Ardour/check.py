#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""check.py state SESSION-FILE OUT: the plug-in's state as the session keeps it.
check.py compare LEFT RIGHT: two WAV files of floats; fails where they differ by more than the last bit of a sample at 1."""
import array
import base64
import re
import struct
import sys


def state(session, out):
    with open(session, encoding="utf-8") as file:
        chunk = re.search(r"<vst3 .*?<chunk[^>]*>([^<]*)</chunk>", file.read(), re.S)
    preset = base64.b64decode(chunk.group(1))
    table = struct.unpack_from("<q", preset, 40)[0]  # behind magic, version and class id
    for entry in range(struct.unpack_from("<i", preset, table + 4)[0]):
        name, begin, size = struct.unpack_from("<4sqq", preset, table + 8 + 20 * entry)
        if name == b"Comp":
            with open(out, "wb") as file:
                file.write(preset[begin:begin + size])
            return 0
    return 1


def samples(path):
    with open(path, "rb") as file:
        data = file.read()
    begin = data.index(b"data") + 8
    out = array.array("f")
    out.frombytes(data[begin:begin + struct.unpack_from("<I", data, begin - 4)[0]])
    return out


def compare(left, right):
    a, b = samples(left), samples(right)
    worst = max(abs(x - y) for x, y in zip(a, b))
    other = sum(x != y for x, y in zip(a, b))
    print(f"{len(a)} and {len(b)} samples, peak {max(map(abs, b)):.6f}, {other} differ, by {worst:.3g} at most")
    return 0 if len(a) == len(b) and worst < 1e-7 and max(map(abs, b)) > 0.01 else 1


sys.exit({"state": state, "compare": compare}[sys.argv[1]](*sys.argv[2:]))
