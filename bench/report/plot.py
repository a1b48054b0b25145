"""Draws the comparison as SVG, a panel for each work, a bar for each who does it; one file for light and dark pages."""

import html

import table

# Fill classes, and what each is where a page is dark.
STYLE = """\
:root { color-scheme: light dark }
text { fill: #1f2933 } .faint { fill: #6b7785 } .kelto { fill: #2563eb } .bar { fill: #b4bfca }
.cut { stroke: #1f2933; stroke-width: 1.5; fill: none }
@media (prefers-color-scheme: dark) {
  text { fill: #e6edf3 } .faint { fill: #9aa6b2 } .kelto { fill: #5b9dff } .bar { fill: #4b5763 }
  .cut { stroke: #e6edf3 }
}"""
FONT = "system-ui, -apple-system, 'Segoe UI', 'DejaVu Sans', sans-serif"

MARGIN, NAMES, BARS, NUMBERS, GAP = 4, 180, 185, 58, 36
ROW, HEAD, TOP = 17, 40, 46
# Bars end at so many times what Kelto needs: far behind is far behind.
LONGEST = 3.0


def text(x, y, words, style="", size=12, anchor="start", weight="normal"):
    return (f'<text x="{x:.1f}" y="{y:.1f}" class="{style}" font-size="{size}" text-anchor="{anchor}" '
            f'font-weight="{weight}">{html.escape(words)}</text>')


def bar(x, y, width, style):
    return f'<rect x="{x:.1f}" y="{y:.1f}" width="{max(width, 1):.1f}" height="12" rx="1.5" class="{style}"/>'


def cut(x, y):
    """Two strokes across the end of a bar that is longer than it is drawn."""
    return f'<path d="M{x - 12:.1f} {y - 1} l-4 14 M{x - 8:.1f} {y - 1} l-4 14" class="cut"/>'


def short(value):
    for unit, factor in (("M", 1e6), ("k", 1e3)):
        if value >= 10 * factor or (unit == "M" and value >= factor):
            scaled = value / factor
            return (f"{scaled:.1f}" if scaled < 100 else f"{scaled:.0f}") + " " + unit
    return f"{value:,.0f}"


def panel(x, y, work, words, group, needed):
    """The elements of one work, the fastest first; and how high it is."""
    longest = min(max(needed[(work, c.name)] for c in group), LONGEST * needed[(work, table.KELTO)])
    parts = [text(x, y + 12, work, size=13, weight="bold"), text(x, y + 28, words, "faint", 11.5)]
    left = x + NAMES
    for row, c in enumerate(sorted(group, key=lambda c: needed[(work, c.name)])):
        top, need = y + HEAD + row * ROW, needed[(work, c.name)]
        width = BARS * min(need, longest) / longest
        style = "kelto" if c.name.startswith(table.KELTO) else ""
        parts += [text(left - 8, top + 10, c.name, style, 11.5, "end", "bold" if style else "normal"),
                  bar(left, top, width, style or "bar"),
                  text(left + BARS + NUMBERS, top + 10, short(need), style or "faint", 11, "end")]
        if need > longest * 1.001:
            parts.append(cut(left + width, top))
    return parts, HEAD + len(group) * ROW + 16


def comparison(contenders, needed):
    """The first of each kind of work that Kelto does beside others, in two columns."""
    kinds = {}
    for work, words, group in table.by_work(contenders):
        if (work, table.KELTO) in needed and len(group) > 1:
            kinds.setdefault(work.partition("/")[0], (work, words, group))
    panels = kinds.values()
    half = sum(HEAD + len(group) * ROW + 16 for _, _, group in panels) / 2
    column = NAMES + BARS + NUMBERS + GAP
    parts = [text(MARGIN, 18, "Instructions per call: shorter is better", size=16, weight="bold"),
             text(MARGIN, 36, "A bar cut by two strokes is longer than %g times Kelto's." % LONGEST, "faint")]
    x, y, lowest, drawn = MARGIN, TOP, TOP, 0
    for work, words, group in panels:
        if x == MARGIN and drawn >= half:
            x, y = MARGIN + column, TOP
        elements, height = panel(x, y, work, words, group, needed)
        parts += elements
        y, drawn, lowest = y + height, drawn + height, max(lowest, y + height)
    width = 2 * column - GAP + 2 * MARGIN
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {lowest:.0f}" width="{width}" '
            f'height="{lowest:.0f}" font-family="{FONT}" role="img">\n<title>Kelto and its peers: instructions per call'
            f'</title>\n<style>{STYLE}</style>\n' + "\n".join(parts) + "\n</svg>\n")
