#!/usr/bin/env python3
"""Compares what the built library exports and needs with what is promised.

usage: check_symbols.py LIBRARY LIST [NM] [READELF]

Every line of the list is a name, its kind, "function" or "data", and where that is not 1.0 the version that first had
it, sorted by name.
"""

import os
import re
import subprocess
import sys

# By library: the nodes of its names, and what it may need beside the run time.
LIBRARIES = {"libkelto.so": ("KELTO", "icuuc|expat"), "libkelto-locale.so": ("KELTO_LOCALE", "kelto|icui18n|icuuc")}


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def exported(nm, library):
    symbols = {}
    for line in run(nm, "-D", "--defined-only", library).splitlines():
        _, letter, symbol = line.split()
        name, _, node = symbol.partition("@@")
        if letter != "A": # the nodes themselves
            symbols[name] = ("function" if letter in "TWi" else "data", node)
    return symbols


def dynamic(readelf, library, tag):
    return re.findall(rf"\({tag}\).*\[(.*)\]", run(readelf, "-d", library))


def main():
    library, list_path = sys.argv[1:3]
    nm, readelf = (sys.argv[3:] + ["nm", "readelf"][len(sys.argv) - 3 :])[:2]
    file = os.path.basename(library)
    node, needed = LIBRARIES[re.sub(r"\.so.*", ".so", file)]
    soname = re.sub(r"\.so.*", ".so.1", file)
    allowed = re.compile(rf"lib({needed}|stdc\+\+|gcc_s|m|c)\.so\.\d+|ld-linux-x86-64\.so\.2")
    with open(list_path, encoding="ascii") as lines:
        rows = [(line.split() + ["1.0"])[:3] for line in lines]
    promised = {name: (kind, f"{node}_{version}") for name, kind, version in rows}
    found = exported(nm, library)

    problems = [f"not exported: {name}" for name in promised if name not in found]
    problems += [f"exported but not in the list: {name}" for name in sorted(found) if name not in promised]
    problems += [
        f"{name} is {found[name]}, not {promise}"
        for name, promise in promised.items()
        if found.get(name, promise) != promise
    ]
    if [name for name, *_ in rows] != sorted(promised):
        problems.append("the list is not sorted, or has a name twice")
    if dynamic(readelf, library, "SONAME") != [soname]:
        problems.append(f"the library's name is not {soname}")
    problems += [
        f"needs {name} at run time" for name in dynamic(readelf, library, "NEEDED") if not allowed.fullmatch(name)
    ]
    print("\n".join(problems) or f"{len(promised)} names as promised")
    sys.exit(1 if problems else 0)


if __name__ == "__main__":
    main()
