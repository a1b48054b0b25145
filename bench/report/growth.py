"""W11: costs at 1, 4, 16 and 64 times the size."""

import collections

# What four times the work may multiply the cost by, at every step.
LINEAR = 4.4

# Families whose cost first grows as the square of the work, up to a bound that the last step is beyond, and what a step
# before it may multiply the cost by. Part of an unfinished tag is read again with each chunk of it.
BENT = {"attributes": 11}


def families(contenders, counts):
    """(name, text, {size: instructions}) of each family."""
    sizes = collections.OrderedDict()
    for c in contenders:
        if c.is_growth():
            _, name, size = c.work.split("/")
            sizes.setdefault((name, c.text), {})[int(size)] = counts[(c.work, c.name)]
    return [(name, text, by_size) for (name, text), by_size in sizes.items()]


def steps(by_size):
    costs = [by_size[size] for size in sorted(by_size)]
    return [after / before for before, after in zip(costs, costs[1:])]


def steepest(by_size):
    return max(steps(by_size))


def is_linear(by_size):
    return steepest(by_size) <= LINEAR


def is_as_expected(name, by_size):
    *first, last = steps(by_size)
    return last <= LINEAR and max(first) <= BENT.get(name, LINEAR)


def verdict(name, by_size):
    if is_linear(by_size):
        return "linear"
    return "faster, then linear" if is_as_expected(name, by_size) else "FASTER"


def as_text(contenders, counts):
    lines = ["%-56s %12s %12s %12s %12s %10s" %
             ("W11: cost as the work grows, from", "x 1", "x 4", "x 16", "x 64", "steepest")]
    for name, text, by_size in families(contenders, counts):
        lines.append("%-56s %12s %12s %12s %12s %10.2f  %s" %
                     (("  " + name + ": " + text,) + tuple(f"{by_size[size]:,.0f}" for size in (1, 4, 16, 64)) +
                      (steepest(by_size), verdict(name, by_size))))
    return "\n".join(lines)


def check(contenders, counts):
    """Names the families that grow faster than their work. The number of them."""
    faults = [f for f in families(contenders, counts) if not is_as_expected(f[0], f[2])]
    for name, text, by_size in faults:
        print("W11: %s: four times the size costs %s times as much, step by step (%s)."
              % (name, ", ".join("%.1f" % step for step in steps(by_size)), text))
    return len(faults)
