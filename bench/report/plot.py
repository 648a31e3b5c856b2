"""Plots as SVG: bars side by side with peers, and lines of cost against size. The same figures make the same bytes."""

import math
from xml.sax.saxutils import escape

from model import Table
from tables import Line, number

FONT = "font-family=\"system-ui, 'Segoe UI', 'DejaVu Sans', sans-serif\""
INK, FAINT, RULE, PAPER = "#1f2328", "#59636e", "#d1d9e0", "#ffffff"
OURS, OTHERS, PEERS = "#0969da", "#9cc4f2", "#b1b8c0"
LINES = ["#0969da", "#cf222e", "#1a7f37", "#8250df", "#bc4c00", "#57606a", "#116329", "#a40e26"]


def text(x: float, y: float, content: str, size: int = 12, anchor: str = "start", fill: str = INK,
         weight: str = "normal") -> str:
    return (f'<text x="{x:.1f}" y="{y:.1f}" font-size="{size}" text-anchor="{anchor}" fill="{fill}" '
            f'font-weight="{weight}">{escape(content)}</text>')


def picture(width: float, height: float, title: str, subtitle: str, parts: list[str]) -> str:
    head = [
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{width:.0f}" height="{height:.0f}" '
        f'viewBox="0 0 {width:.0f} {height:.0f}" role="img" {FONT}>',
        f"<title>{escape(title)}</title>",
        f'<rect x="0.5" y="0.5" width="{width - 1:.0f}" height="{height - 1:.0f}" rx="6" fill="{PAPER}" '
        f'stroke="{RULE}"/>',
        text(16, 26, title, 15, weight="bold"),
        text(16, 44, subtitle, 12, fill=FAINT),
    ]
    return "\n".join(head + parts + ["</svg>"]) + "\n"


def plain(label: str) -> str:
    """A label of a table without the marks of Markdown."""
    return label.replace("`", "").replace("**", "")


# ---- bars

LABELS, PANEL, BAR, STEP, TOP = 310, 190, 105, 21, 84


def bar_colour(line: Line, place: int) -> str:
    if not line.row.ours:
        return PEERS
    return OURS if place == 0 else OTHERS


def panel(table: Table, lines: list[Line], index: int) -> list[str]:
    left = LABELS + index * PANEL
    largest = max((line.figures[index].median for line in lines if line.figures[index]), default=0)
    parts = [text(left, TOP - 14, plain(table.columns[index].label), 12, weight="bold"),
             f'<line x1="{left}" y1="{TOP - 6}" x2="{left}" y2="{TOP + STEP * len(lines)}" stroke="{RULE}"/>']
    for place, line in enumerate(lines):
        y = TOP + STEP * place
        figure = line.figures[index]
        if figure is None:
            parts.append(text(left + 5, y + 12, line.absence, 11, fill=FAINT))
            continue
        width = max(1.5, BAR * figure.median / largest) if largest > 0 else 1.5
        parts.append(f'<rect x="{left}" y="{y}" width="{width:.1f}" height="15" fill="{bar_colour(line, place)}"/>')
        weight = "bold" if line.row.ours and place == 0 else "normal"
        parts.append(text(left + width + 5, y + 12, number(figure.median), 11, weight=weight))
    return parts


def bars(table: Table, lines: list[Line]) -> str:
    """A panel for each column, each with a scale of its own; the first row is the library's."""
    parts = []
    for place, line in enumerate(lines):
        weight = "bold" if line.row.ours else "normal"
        parts.append(text(LABELS - 10, TOP + STEP * place + 12, plain(line.row.label), 12, "end", weight=weight))
    for index in range(len(table.columns)):
        parts += panel(table, lines, index)
    subtitle = f"{table.unit}; less is better; each column has its own scale"
    return picture(LABELS + PANEL * len(table.columns), TOP + STEP * len(lines) + 14, plain(table.title), subtitle,
                   parts)


# ---- lines

LEFT, UP, WIDE, HIGH = 70, 66, 470, 290
LETTER = 6.8  # the width of one, about, at the size of labels


def decades(least: float, most: float) -> list[int]:
    return list(range(math.floor(math.log10(least) + 1e-9), math.ceil(math.log10(most) - 1e-9) + 1))


def power_label(exponent: int) -> str:
    return f"{10 ** exponent:,}" if exponent >= 0 else f"{10.0 ** exponent:g}"


class LogScale:
    def __init__(self, values: list[float], start: float, end: float):
        self.exponents = decades(min(values), max(values))
        if len(self.exponents) == 1:
            self.exponents.append(self.exponents[0] + 1)
        self.start, self.end = start, end

    def at(self, value: float) -> float:
        first, last = self.exponents[0], self.exponents[-1]
        return self.start + (math.log10(value) - first) / (last - first) * (self.end - self.start)


def grid(across: LogScale, up: LogScale) -> list[str]:
    parts = []
    for exponent in across.exponents:
        x = across.at(10.0 ** exponent)
        parts.append(f'<line x1="{x:.1f}" y1="{UP}" x2="{x:.1f}" y2="{UP + HIGH}" stroke="{RULE}"/>')
        parts.append(text(x, UP + HIGH + 18, power_label(exponent), 11, "middle", FAINT))
    for exponent in up.exponents:
        y = up.at(10.0 ** exponent)
        parts.append(f'<line x1="{LEFT}" y1="{y:.1f}" x2="{LEFT + WIDE}" y2="{y:.1f}" stroke="{RULE}"/>')
        parts.append(text(LEFT - 8, y + 4, power_label(exponent), 11, "end", FAINT))
    return parts


def curve(line: Line, points: list[tuple[float, float]], colour: str, place: int) -> list[str]:
    dash = "" if line.row.ours else ' stroke-dasharray="5 4"'
    path = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
    y = UP + 14 + 22 * place
    x = LEFT + WIDE + 20
    parts = [f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="2"{dash}/>',
             f'<line x1="{x}" y1="{y - 4}" x2="{x + 24}" y2="{y - 4}" stroke="{colour}" stroke-width="2"{dash}/>',
             text(x + 30, y, plain(line.row.label), 12)]
    return parts + [f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3" fill="{colour}"/>' for x, y in points]


def lines(table: Table, rows: list[Line]) -> str:
    """Both axes are logarithmic; a line that is level costs the same for each element at every size."""
    sizes = [float(column.words["n"]) for column in table.columns]
    legend = 66 + LETTER * max(len(plain(row.row.label)) for row in rows)
    values = [figure.median for row in rows for figure in row.figures if figure and figure.median > 0]
    if not values:
        return picture(LEFT + WIDE + legend, 80, plain(table.title), "no figures", [])
    across = LogScale(sizes, LEFT, LEFT + WIDE)
    up = LogScale(values, UP + HIGH, UP)
    parts = grid(across, up)
    for place, row in enumerate(rows):
        points = [(across.at(size), up.at(figure.median))
                  for size, figure in zip(sizes, row.figures) if figure and figure.median > 0]
        parts += curve(row, points, LINES[place % len(LINES)], place)
    subtitle = f"{table.unit}, against their number; both scales are logarithmic"
    return picture(LEFT + WIDE + legend, UP + HIGH + 34, plain(table.title), subtitle, parts)


def svg(table: Table, rows: list[Line]) -> str:
    return lines(table, rows) if table.plot_kind == "lines" else bars(table, rows)
