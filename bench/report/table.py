"""The table: for each work its contenders, what they need, and whether the goal is met."""

import itertools

from build import KELTO


def goal_of(work_contenders, needed):
    """The goal as a number, and as it is written; (None, "") where there is none or its peer is missing."""
    first = work_contenders[0]
    if not first.goal:
        return None, ""
    factor, _, peer = first.goal.partition(" ")
    if not peer:
        return float(factor), f"≤ {float(factor):,.0f}"
    base = needed.get((first.work, peer))
    return (float(factor) * base, f"≤ {factor} × {peer}") if base is not None else (None, "")


def rows(contenders, needed):
    """For each contender: work, text, name, need, times Kelto's, goal, verdict; the last two with Kelto only."""
    for _, group in itertools.groupby(contenders, lambda c: c.work):
        group = list(group)
        limit, goal = goal_of(group, needed)
        ours = needed.get((group[0].work, KELTO))
        for c in group:
            need = needed[(c.work, c.name)]
            verdict = ("met" if need <= limit else "not met") if c.is_kelto() and limit is not None else ""
            yield c, need, need / ours if ours else None, goal if c.is_kelto() else "", verdict


def as_text(contenders, needed):
    lines = ["%-13s %-28s %14s %9s  %-18s %s" % ("work", "by", "instructions", "of Kelto", "goal", "")]
    work = ""
    for c, need, ratio, goal, verdict in rows(contenders, needed):
        if c.work != work:
            work = c.work
            lines.append("%s: %s" % (c.work, c.text))
        lines.append("%-13s %-28s %14s %9s  %-18s %s" %
                     ("", c.name, f"{need:,.0f}", "" if ratio is None else f"{ratio:.2f}", goal, verdict))
    return "\n".join(line.rstrip() for line in lines)
