"""Writes what was measured into docs/performance.md and bench/README.md, between the marks there; draws the picture."""

import datetime
import platform
import re
import subprocess

import growth
import memory
import plot
import table

MARK = "<!-- measured: %s -->"
END = "<!-- end -->"


def rewrite(page, blocks):
    """Rewrites the blocks of a page; they must be there."""
    text = page.read_text(encoding="utf-8")
    for name, content in blocks.items():
        pattern = re.compile(re.escape(MARK % name) + r".*?" + re.escape(END), re.S)
        if not pattern.search(text):
            raise SystemExit("scripts/bench: %s has no block %r" % (page, name))
        block = MARK % name + "\n" + content + "\n" + END
        text = pattern.sub(lambda _, block=block: block, text)
    page.write_text(text, encoding="utf-8")
    print("%s is rewritten." % page)


def version(*command):
    lines = subprocess.run(command, capture_output=True, text=True).stdout.splitlines()
    return lines[0].strip() if lines else "unknown"


def package(name):
    return version("dpkg-query", "-W", "-f", "${Version}", name) or "unknown"


def setting(root):
    processors = open("/proc/cpuinfo", encoding="ascii", errors="replace").read()
    model = re.search(r"^model name\s*:\s*(.*)$", processors, re.M)
    commit = version("git", "-C", str(root), "rev-parse", "--short=10", "HEAD")
    return "Measured on %s at commit %s: %s, %s, %s, glibc %s, ICU %s, expat %s." % (
        datetime.date.today().isoformat(), commit, model.group(1) if model else platform.machine(),
        version("sh", "-c", ". /etc/os-release && echo $PRETTY_NAME"), version("c++", "--version"),
        package("libc6"), package("libicu-dev"), package("libexpat1"))


def comparison(contenders, counts, times, used):
    lines = ["| Work | By | Instructions | Time, ns | of Kelto's time | Blocks | Peak, bytes |",
             "|---|---|--:|--:|--:|--:|--:|"]
    for work, text, group in table.by_work([c for c in contenders if not c.is_part()]):
        for index, c in enumerate(group):
            key = (work, c.name)
            blocks, peak = used[key]
            ours = times.get((work, table.KELTO))
            lines.append("| %s | %s | %s | %s | %s | %d | %s |" % (
                "**%s** %s" % (work, text) if index == 0 else "", "**%s**" % c.name if c.is_kelto() else c.name,
                f"{counts[key]:,.0f}", table.number(times[key]), f"{times[key] / ours:.2f}" if ours else "", blocks,
                f"{peak:,}"))
    return "\n".join(lines)


def goals(contenders, counts, times):
    lines = ["| Work | Goal | Needed | |", "|---|---|--:|---|"]
    for c in contenders:
        for goal, needed, unit in ((c.goal, counts, "instructions"), (c.time_goal, times, "ns")):
            if c.is_kelto() and goal:
                lines.append("| **%s** %s | %s | %s %s | %s |" % (
                    c.work, c.text, table.goal_text(goal), table.number(needed[(c.work, c.name)]), unit,
                    table.verdict(table.is_met(goal, c.work, needed))))
    return "\n".join(lines)


def parts_table(contenders, counts, times):
    lines = ["| Part | By | Instructions | Time, ns |", "|---|---|--:|--:|"]
    for c in contenders:
        if c.is_part():
            key = (c.work, c.name)
            lines.append("| %s | %s | %s | %s |" % (c.text, c.name, f"{counts[key]:,.0f}", table.number(times[key])))
    return "\n".join(lines)


MARKED = {"linear": "✓ linear", "FASTER": "✗ **faster**"}


def growth_table(contenders, counts):
    lines = ["| What grows, from | × 1 | × 4 | × 16 | × 64 | Steepest step | |", "|---|--:|--:|--:|--:|--:|---|"]
    for name, text, by_size in growth.families(contenders, counts):
        lines.append("| **%s**: %s | %s | %.2f | %s |" % (
            name, text, " | ".join(f"{by_size[size]:,.0f}" for size in (1, 4, 16, 64)), growth.steepest(by_size),
            MARKED.get(growth.verdict(name, by_size), growth.verdict(name, by_size))))
    return "\n".join(lines)


def catalog_table(programs):
    lines = ["| Messages | Their text | Pointers to them | Kept by the catalog | That is besides "
             "| Peak while loading |",
             "|--:|--:|--:|--:|--:|--:|"]
    for messages, text, pointers, kept, peak in memory.catalogs(programs):
        lines.append("| %s | %s | %s | %s | %d | %s |" % (f"{messages:,}", f"{text:,}", f"{pointers:,}", f"{kept:,}",
                                                          kept - text - pointers, f"{peak:,}"))
    return "\n".join(lines)


def size_table(programs):
    lines = ["| Library | Bytes |", "|---|--:|"]
    return "\n".join(lines + ["| %s | %s |" % (name, f"{size:,}") for name, size in memory.library_sizes(programs)])


def thread_text(speed_up):
    ours, loop = speed_up["Kelto"], speed_up["arithmetic loop"]
    return ("With a second thread on a second processor Kelto does **%.2f** times the work of one thread, the "
            "arithmetic "
            "loop %.2f times: %.1f %% %s." % (ours, loop, 100 * abs(1 - ours / loop),
                                             "less" if ours < loop else "more"))


def write(root, programs, contenders, counts, times, used, speed_up):
    drawing = root / "docs" / "performance" / "instructions.svg"
    drawing.parent.mkdir(exist_ok=True)
    drawing.write_text(plot.comparison(contenders, counts), encoding="utf-8")
    rewrite(root / "docs" / "performance.md", {
        "setting": setting(root),
        "comparison": comparison(contenders, counts, times, used),
        "parts": parts_table(contenders, counts, times),
        "threads": thread_text(speed_up),
        "growth": growth_table(contenders, counts),
        "catalogs": catalog_table(programs),
        "sizes": size_table(programs),
    })
    rewrite(root / "bench" / "README.md", {"setting": setting(root), "goals": goals(contenders, counts, times)})
