"""The table: for each work its contenders, what they need, and whether Kelto meets the goal."""

import itertools

from build import KELTO


def limit(goal, work, needed):
    """A goal of works.cpp as a number: None where there is none, or where the peer that it names takes no part."""
    factor, _, peer = goal.partition(" ")
    if not factor:
        return None
    if not peer:
        return float(factor)
    base = needed.get((work, peer))
    return float(factor) * base if base is not None else None


def goal_text(goal):
    factor, _, peer = goal.partition(" ")
    if not factor:
        return ""
    return f"≤ {factor} × {peer}" if peer else f"≤ {float(factor):,.0f}"


def is_met(goal, work, needed):
    """None where there is no goal."""
    most = limit(goal, work, needed)
    return None if most is None else needed[(work, KELTO)] <= most


def by_work(contenders):
    """(work, text, its contenders), for each work but those of the growth."""
    for work, group in itertools.groupby((c for c in contenders if not c.is_growth()), lambda c: c.work):
        group = list(group)
        yield work, group[0].text, group


def verdict(met):
    return {None: "", True: "met", False: "NOT MET"}[met]


def as_text(contenders, needed, unit, goal_of, extra=None):
    """One table. `goal_of` picks the goal of a contender; `extra` is (heading, function) of one more column."""
    heading, more = extra or ("", lambda contender: "")
    lines = ["%-30s %14s %9s  %-20s %s" % ("", unit, "of Kelto", heading, "goal")]
    for work, text, group in by_work(contenders):
        lines.append("%s: %s" % (work, text))
        ours = needed.get((work, KELTO))
        for c in group:
            need = needed[(work, c.name)]
            goal = goal_of(c) if c.is_kelto() else ""
            ratio = f"{need / ours:.2f}" if ours else ""
            lines.append("  %-28s %14s %9s  %-20s %s %s" %
                         (c.name, number(need), ratio, more(c), goal_text(goal),
                          verdict(is_met(goal, work, needed)) if goal else ""))
    return "\n".join(line.rstrip() for line in lines)


def number(value):
    """Four digits at least, and no more after the point than mean something."""
    return f"{value:,.0f}" if value >= 100 else f"{value:.1f}"
