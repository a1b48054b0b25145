"""Instructions per call: the difference between a run of n calls and one of twice as many, by callgrind."""

import concurrent.futures
import os
import re
import subprocess
import sys


# Callgrind counts a repeated string instruction once for each byte, which no processor does: the C library is told to
# copy and fill by ordinary loops.
TUNABLES = ":".join("glibc.cpu.x86_rep_%s_threshold=0x7fffffff" % what for what in ("movsb", "stosb"))


def collected(programs, contender, calls):
    command = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", programs.workload, contender.work,
               contender.name, str(calls)]
    # The same addresses in every run. Where the kernel forbids it the counts hardly differ.
    if subprocess.run(["setarch", "-R", "true"], stderr=subprocess.DEVNULL).returncode == 0:
        command = ["setarch", "-R"] + command
    environment = {**programs.ENVIRONMENT, "GLIBC_TUNABLES": TUNABLES}
    done = subprocess.run(command, env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    found = re.search(r"Collected : (\d+)", done.stdout)
    if done.returncode != 0 or not found:
        sys.stderr.write(done.stdout)
        raise RuntimeError("%s by %s cannot be counted" % (contender.work, contender.name))
    return int(found.group(1))


def count(programs, contenders):
    """The counts by (work, contender). What runs beside a count does not disturb it, so all processors take part."""
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        once = {c: pool.submit(collected, programs, c, c.calls) for c in contenders}
        twice = {c: pool.submit(collected, programs, c, 2 * c.calls) for c in contenders}
        return {(c.work, c.name): (twice[c].result() - once[c].result()) / c.calls for c in contenders}
