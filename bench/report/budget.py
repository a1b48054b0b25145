"""The counts that we promise, with the kind of processor that they were counted on."""

import platform
import re

SAME_PROCESSOR = 0.03
# The C library and ICU choose other code there.
OTHER_PROCESSOR = 0.10

HEADER = """\
# Instructions per call that Kelto promises to stay within; scripts/bench --check compares, scripts/bench --record
# writes. 3 % more is let pass on the kind of processor named here, 10 % on others.
"""


def processor():
    """The maker, family and model: what decides on the code that libraries choose."""
    try:
        text = open("/proc/cpuinfo", encoding="ascii", errors="replace").read()
    except OSError:
        return platform.machine()
    values = [re.search(r"^%s\s*:\s*(.*)$" % key, text, re.M) for key in ("vendor_id", "cpu family", "model")]
    return " ".join(v.group(1) for v in values) if all(values) else platform.machine()


def path(root):
    return root / "bench" / "budget.txt"


def record(root, counts):
    """Writes the counts by work; works that were not counted keep theirs where the processor is the same."""
    promised, recorded_on = read(root)
    kept = promised if recorded_on == processor() else {}
    lines = ["%-14s %d\n" % (work, round(n)) for work, n in {**kept, **counts}.items()]
    path(root).write_text(HEADER + "processor: %s\n" % processor() + "".join(lines))
    print("bench/budget.txt: %d works recorded." % len(counts))


def read(root):
    promised, recorded_on = {}, ""
    if not path(root).exists():
        return promised, recorded_on
    for line in path(root).read_text().splitlines():
        if line.startswith("processor:"):
            recorded_on = line.partition(":")[2].strip()
        elif line and not line.startswith("#"):
            work, number = line.split()
            promised[work] = int(number)
    return promised, recorded_on


def check(root, counts, complete):
    """Compares the counts by work; the number of faults, each of which is told. `complete`: all works were counted."""
    promised, recorded_on = read(root)
    same = processor() == recorded_on
    tolerance = SAME_PROCESSOR if same else OTHER_PROCESSOR
    print("Budget counted on %s; this is %s: %.0f %% more is let pass." %
          (recorded_on, "the same kind of processor" if same else processor(), 100 * tolerance))
    faults = 0
    for work, needed in counts.items():
        if work not in promised:
            print("%s has no budget: run scripts/bench --record." % work)
            faults += 1
            continue
        ratio = needed / promised[work]
        print("%-14s %13s of %13s  %+6.1f %%" % (work, f"{needed:,.0f}", f"{promised[work]:,}", 100 * (ratio - 1)))
        if ratio > 1 + tolerance:
            print("%s needs %s instructions a call, and may need %s." %
                  (work, f"{needed:,.0f}", f"{promised[work] * (1 + tolerance):,.0f}"))
            faults += 1
        elif ratio < 1 - SAME_PROCESSOR and same:
            print("%s is faster than promised: scripts/bench --record keeps it so." % work)
    for work in promised.keys() - counts.keys() if complete else ():
        print("%s has a budget but was not counted." % work)
        faults += 1
    return faults
