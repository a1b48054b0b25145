"""W11: costs at 1, 4, 16 and 64 times the size."""

import collections

# What the last step, from 16 to 64 times the size, may multiply the cost by.
LINEAR = 4.4


def families(contenders, counts):
    """(name, text, {size: instructions}) of each family."""
    sizes = collections.OrderedDict()
    for c in contenders:
        if c.is_growth():
            _, name, size = c.work.split("/")
            sizes.setdefault((name, c.text), {})[int(size)] = counts[(c.work, c.name)]
    return [(name, text, by_size) for (name, text), by_size in sizes.items()]


def last_step(by_size):
    return by_size[64] / by_size[16]


def is_linear(by_size):
    return last_step(by_size) <= LINEAR


def as_text(contenders, counts):
    lines = ["%-56s %12s %12s %12s %12s %10s" %
             ("W11: cost as the work grows, from", "x 1", "x 4", "x 16", "x 64", "last step")]
    for name, text, by_size in families(contenders, counts):
        lines.append("%-56s %12s %12s %12s %12s %10.2f  %s" %
                     (("  " + name + ": " + text,) + tuple(f"{by_size[size]:,.0f}" for size in (1, 4, 16, 64)) +
                      (last_step(by_size), "linear" if is_linear(by_size) else "NOT LINEAR")))
    return "\n".join(lines)


def check(contenders, counts):
    """Names the families that grow faster than their work. The number of them."""
    faults = [f for f in families(contenders, counts) if not is_linear(f[2])]
    for name, text, by_size in faults:
        print("W11: %s: four times the size costs %.1f times as much (%s)." % (name, last_step(by_size), text))
    return len(faults)
