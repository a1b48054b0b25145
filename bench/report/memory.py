"""Heap and file sizes: blocks and peak of a call, what a loaded catalog costs, the libraries that a program carries."""

import os
import re
import subprocess
import tempfile


def measure(programs, contenders):
    """(blocks taken, peak bytes) of one call, by (work, contender)."""
    used = {}
    for c in contenders:
        done = subprocess.run([programs.memory, c.work, c.name], env=programs.ENVIRONMENT, capture_output=True,
                              text=True, check=True)
        blocks, peak = done.stdout.split()
        used[(c.work, c.name)] = int(blocks), int(peak)
    return used


def catalogs(programs):
    """(messages, bytes of text, bytes of pointers, bytes kept, peak while loading) for catalogs of several sizes."""
    done = subprocess.run([programs.memory, "--catalogs"], env=programs.ENVIRONMENT, capture_output=True, text=True,
                          check=True)
    return [tuple(int(value) for value in line.split()) for line in done.stdout.splitlines()]


def library_sizes(programs):
    """(what, bytes) of the stripped library and of the peers' libraries as they are installed."""
    with tempfile.NamedTemporaryFile() as stripped:
        subprocess.run(["strip", "-o", stripped.name, programs.library], check=True)
        sizes = [("libkelto", os.path.getsize(stripped.name))]
    loaded = subprocess.run(["ldd", programs.workload], capture_output=True, text=True, check=True).stdout
    for name in ("libfmt", "libboost_locale", "libicui18n", "libicuio", "libicuuc", "libicudata", "libexpat"):
        found = re.search(r"%s\.so\S* => (\S+)" % name, loaded)
        if found:
            sizes.append((name, os.path.getsize(found.group(1))))
    return sizes
