"""Draws the table and the growth as SVG, in a light and a dark version."""

import html
import math

import growth
import table

THEMES = {
    "light": {"text": "#1f2933", "faint": "#6b7785", "bar": "#b4bfca", "kelto": "#2563eb", "goal": "#c2410c",
              "grid": "#e2e7ec"},
    "dark": {"text": "#e6edf3", "faint": "#9aa6b2", "bar": "#4b5763", "kelto": "#5b9dff", "goal": "#ff9e64",
             "grid": "#2d3640"},
}
FONT = "system-ui, -apple-system, 'Segoe UI', 'DejaVu Sans', sans-serif"


class Drawing:
    """Collects the elements of one SVG."""

    def __init__(self, title, colours):
        self.title, self.colours, self.parts = title, colours, []

    def text(self, x, y, text, colour="text", size=12, anchor="start", weight="normal"):
        self.parts.append(f'<text x="{x:.1f}" y="{y:.1f}" font-size="{size}" fill="{self.colours[colour]}" '
                          f'text-anchor="{anchor}" font-weight="{weight}">{html.escape(text)}</text>')

    def bar(self, x, y, width, height, colour):
        self.parts.append(f'<rect x="{x:.1f}" y="{y:.1f}" width="{max(width, 1):.1f}" height="{height}" rx="1.5" '
                          f'fill="{self.colours[colour]}"/>')

    def line(self, points, colour, width=1.5, dashes=""):
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
        dashed = f' stroke-dasharray="{dashes}"' if dashes else ""
        self.parts.append(f'<polyline points="{path}" fill="none" stroke="{self.colours[colour]}" '
                          f'stroke-width="{width}" stroke-linejoin="round"{dashed}/>')

    def dot(self, x, y, colour):
        self.parts.append(f'<circle cx="{x:.1f}" cy="{y:.1f}" r="2.6" fill="{self.colours[colour]}"/>')

    def svg(self, width, height):
        return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height:.0f}" width="{width}" '
                f'height="{height:.0f}" font-family="{FONT}" role="img">\n<title>{html.escape(self.title)}</title>\n' +
                "\n".join(self.parts) + "\n</svg>\n")


def short(value):
    for unit, factor in (("M", 1e6), ("k", 1e3)):
        if value >= 10 * factor or (unit == "M" and value >= factor):
            scaled = value / factor
            return (f"{scaled:.1f}" if scaled < 100 else f"{scaled:.0f}") + " " + unit
    return table.number(value) if value >= 100 or value != round(value) else f"{value:.0f}"


MARGIN, NAMES, BARS, NUMBERS, GAP = 4, 180, 185, 58, 36
ROW, HEAD, TOP = 17, 40, 58
# Bars end at so many times what Kelto needs: far behind is far behind.
LONGEST = 3.0


def panel(drawing, x, y, work, text, group, needed):
    """One work; the height that it took."""
    ours = needed[(work, table.KELTO)]
    most = table.limit(group[0].goal, work, needed)
    longest = min(max(needed[(work, c.name)] for c in group), LONGEST * ours)
    longest = max(longest, most or 0)
    drawing.text(x, y + 12, work, weight="bold", size=13)
    drawing.text(x, y + 28, text, "faint", size=11.5)
    left = x + NAMES
    for row, c in enumerate(sorted(group, key=lambda c: needed[(work, c.name)])):
        top = y + HEAD + row * ROW
        need = needed[(work, c.name)]
        width = BARS * min(need, longest) / longest
        drawing.text(left - 8, top + 10, c.name, "kelto" if c.is_kelto() else "text", 11.5, "end",
                     "bold" if c.is_kelto() else "normal")
        drawing.bar(left, top, width, 12, "kelto" if c.is_kelto() else "bar")
        if need > longest * 1.001:
            broken_end(drawing, left + width, top)
        drawing.text(left + BARS + NUMBERS, top + 10, short(need), "kelto" if c.is_kelto() else "faint", 11, "end")
    bottom = y + HEAD + len(group) * ROW
    if most is not None:
        at = left + BARS * most / longest
        drawing.line([(at, y + HEAD - 4), (at, bottom - 1)], "goal", 1.5, "3 2")
    return bottom - y + 16


def broken_end(drawing, x, top):
    drawing.parts.append(f'<path d="M{x - 12:.1f} {top - 1} l-4 14 M{x - 8:.1f} {top - 1} l-4 14" '
                         f'stroke="{drawing.colours["text"]}" stroke-width="1.5" fill="none"/>')


def comparison(contenders, needed, unit, theme):
    """All works, in two columns: a bar for each contender, the fastest first."""
    drawing = Drawing("Kelto and its peers: %s per call" % unit, THEMES[theme])
    column = NAMES + BARS + NUMBERS + GAP
    drawing.text(MARGIN, 18, "%s per call: shorter is better" % unit.capitalize(), size=16, weight="bold")
    drawing.text(MARGIN, 36, "dashed: the goal. A bar cut by two strokes is longer than %g times Kelto's." % LONGEST, "faint")
    panels = [p for p in table.by_work(contenders) if (p[0], table.KELTO) in needed]
    half = sum(HEAD + len(group) * ROW for _, _, group in panels) / 2
    x, y, lowest, drawn = MARGIN, TOP, TOP, 0
    for work, text, group in panels:
        if x == MARGIN and drawn >= half:
            x, y = MARGIN + column, TOP
        y += panel(drawing, x, y, work, text, group, needed)
        drawn += HEAD + len(group) * ROW
        lowest = max(lowest, y)
    return drawing.svg(2 * column - GAP + 2 * MARGIN, lowest)


CELL_WIDTH, CELL_HEIGHT, COLUMNS = 190, 160, 5


def growth_plot(contenders, counts, theme):
    """A panel for each family: what 1, 4, 16 and 64 times the size costs, beside a dashed line for proportional cost."""
    drawing = Drawing("How the cost grows with the work", THEMES[theme])
    drawing.text(MARGIN, 18, "Cost at 1, 4, 16 and 64 times the size", size=16, weight="bold")
    drawing.text(MARGIN, 36, "instructions relative to the smallest; both scales are logarithmic; dashed: proportional",
                 "faint")
    families = growth.families(contenders, counts)
    for index, (name, _, by_size) in enumerate(families):
        left, top = MARGIN + index % COLUMNS * CELL_WIDTH, TOP + index // COLUMNS * CELL_HEIGHT
        drawing.text(left, top + 12, name, weight="bold")
        width, height, x, y = CELL_WIDTH - 52, CELL_HEIGHT - 62, left + 4, top + 24
        steps = sorted(by_size)
        highest = max(64.0, max(by_size.values()) / by_size[1])

        def place(size, ratio):
            return (x + width * math.log(size) / math.log(64),
                    y + height * (1 - math.log(max(ratio, 1)) / math.log(highest)))

        drawing.line([(x, y), (x, y + height), (x + width, y + height)], "grid", 1)
        drawing.line([place(1, 1), place(64, 64)], "faint", 1, "3 3")
        points = [place(size, by_size[size] / by_size[1]) for size in steps]
        drawing.line(points, "kelto", 2)
        for point in points:
            drawing.dot(*point, "kelto")
        for size in steps:
            drawing.text(place(size, 1)[0], y + height + 14, str(size), "faint", 10, "middle")
        last = by_size[64] / by_size[1]
        drawing.text(points[-1][0] + 5, points[-1][1] + 4, "×" + (f"{last:.1f}" if last < 10 else f"{last:.0f}"), "text",
                     10.5)
    rows = math.ceil(len(families) / COLUMNS)
    return drawing.svg(COLUMNS * CELL_WIDTH, TOP + rows * CELL_HEIGHT - 10)
