"""Writes what was measured into docs/performance.md, between the marks that stand there, and draws its pictures."""

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


def replace_block(text, name, content):
    """The page with one block rewritten; it must be there."""
    pattern = re.compile(re.escape(MARK % name) + r".*?" + re.escape(END), re.S)
    if not pattern.search(text):
        raise SystemExit("scripts/bench: docs/performance.md has no block %r" % name)
    return pattern.sub(lambda _: MARK % name + "\n" + content + "\n" + END, text)


def picture(name, words):
    return ('<picture>\n  <source media="(prefers-color-scheme: dark)" srcset="performance/%s-dark.svg">\n'
            '  <img alt="%s" src="performance/%s-light.svg">\n</picture>' % (name, words, name))


def version(*command):
    lines = subprocess.run(command, capture_output=True, text=True).stdout.splitlines()
    return lines[0].strip() if lines else "unknown"


def package(name):
    return version("dpkg-query", "-W", "-f", "${Version}", name) or "unknown"


def setting(root):
    model = re.search(r"^model name\s*:\s*(.*)$", open("/proc/cpuinfo", encoding="ascii", errors="replace").read(), re.M)
    commit = version("git", "-C", str(root), "rev-parse", "--short=10", "HEAD")
    return "Measured on %s at commit %s: %s, %s, %s, glibc %s, ICU %s, expat %s." % (
        datetime.date.today().isoformat(), commit, model.group(1) if model else platform.machine(),
        version("sh", "-c", ". /etc/os-release && echo $PRETTY_NAME"), version("c++", "--version"),
        package("libc6"), package("libicu-dev"), package("libexpat1"))


def verdict(met):
    return {None: "", True: "✓ met", False: "✗ **not met**"}[met]


def comparison(contenders, counts, times, used):
    lines = ["| Work | By | Instructions | Time, ns | of Kelto's time | Blocks | Peak, bytes | Goal |",
             "|---|---|--:|--:|--:|--:|--:|---|"]
    for work, text, group in table.by_work([c for c in contenders if not c.is_part()]):
        for index, c in enumerate(group):
            key = (work, c.name)
            blocks, peak = used[key]
            goal = ""
            if c.is_kelto():
                goals = [(c.goal, counts, ""), (c.time_goal, times, " in time")]
                goal = "; ".join("%s%s %s" % (table.goal_text(g), what, verdict(table.is_met(g, work, needed)))
                                 for g, needed, what in goals if g)
            name = "**%s**" % c.name if c.is_kelto() else c.name
            lines.append("| %s | %s | %s | %s | %.2f | %d | %s | %s |" % (
                "**%s** %s" % (work, text) if index == 0 else "", name, f"{counts[key]:,.0f}", table.number(times[key]),
                times[key] / times[(work, table.KELTO)], blocks, f"{peak:,}", goal))
    return "\n".join(lines)


def parts_table(contenders, counts, times):
    lines = ["| Part | By | Instructions | Time, ns |", "|---|---|--:|--:|"]
    for c in contenders:
        if c.is_part():
            key = (c.work, c.name)
            lines.append("| %s | %s | %s | %s |" % (c.text, c.name, f"{counts[key]:,.0f}", table.number(times[key])))
    return "\n".join(lines)


def growth_table(contenders, counts):
    lines = ["| What grows, from | × 1 | × 4 | × 16 | × 64 | Last step | |", "|---|--:|--:|--:|--:|--:|---|"]
    for name, text, by_size in growth.families(contenders, counts):
        lines.append("| **%s**: %s | %s | %.2f | %s |" % (
            name, text, " | ".join(f"{by_size[size]:,.0f}" for size in (1, 4, 16, 64)), growth.last_step(by_size),
            "✓ linear" if growth.is_linear(by_size) else "✗ **faster**"))
    return "\n".join(lines)


def catalog_table(programs):
    lines = ["| Messages | Their text | Pointers to them | Kept by the catalog | That is besides | Peak while loading |",
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
    return ("With a second thread on a second processor Kelto does **%.2f** times the work of one thread, the arithmetic "
            "loop %.2f times: %.1f %% %s." % (ours, loop, 100 * abs(1 - ours / loop),
                                             "less" if ours < loop else "more"))


def write(root, programs, contenders, counts, times, used, speed_up):
    page = root / "docs" / "performance.md"
    pictures = root / "docs" / "performance"
    pictures.mkdir(exist_ok=True)
    for theme in plot.THEMES:
        (pictures / f"instructions-{theme}.svg").write_text(
            plot.comparison(contenders, counts, "instructions", theme), encoding="utf-8")
        (pictures / f"growth-{theme}.svg").write_text(plot.growth_plot(contenders, counts, theme), encoding="utf-8")

    goals = [table.is_met(c.goal, c.work, counts) for c in contenders if c.is_kelto() and c.goal]
    goals += [table.is_met(c.time_goal, c.work, times) for c in contenders if c.is_kelto() and c.time_goal]
    blocks = {
        "setting": setting(root) + " %d of %d goals are met." % (goals.count(True), len(goals)),
        "pictures": picture("instructions", "Instructions per call of Kelto and its peers, for each work"),
        "comparison": comparison(contenders, counts, times, used),
        "parts": parts_table(contenders, counts, times),
        "threads": thread_text(speed_up),
        "growth": picture("growth", "How the cost grows with the work: a panel for each family") + "\n\n" +
                  growth_table(contenders, counts),
        "catalogs": catalog_table(programs),
        "sizes": size_table(programs),
    }
    text = page.read_text(encoding="utf-8")
    for name, content in blocks.items():
        text = replace_block(text, name, content)
    page.write_text(text, encoding="utf-8")
    print("docs/performance.md and docs/performance/*.svg are rewritten.")
