"""Tables in Markdown."""

import dataclasses

import machine
from model import ReportError, Row, Table, field_of, name_of
from results import AllResults, Figure, Results


@dataclasses.dataclass(frozen=True)
class Line:
    """A row with what was measured, in the table's unit."""

    row: Row
    figures: list[Figure | None]
    absence: str = ""  # why there is no figure at all


def lines_of(table: Table, results: AllResults, peers: dict[str, str | None]) -> list[Line]:
    measured = results.program(table.program)
    return [line_of(table, row, measured, peers) for row in table.rows]


def line_of(table: Table, row: Row, measured: Results, peers: dict[str, str | None]) -> Line:
    figures: list[Figure | None] = []
    reasons = []
    for index in range(len(table.columns)):
        name = name_of(table, row, index)
        figure = measured.figure(name, field_of(table, row, index)) if name is not None else None
        if figure is not None:
            figure = Figure(figure.median * table.scale, figure.variation)
        elif name is not None:
            reasons.append(measured.reasons.get(name, ""))
            if row.peer is None and not reasons[-1]:
                field = field_of(table, row, index)
                raise ReportError(f"{measured.path} has no \"{field}\" of the benchmark \"{name}\" ({table.title})")
        figures.append(figure)
    if any(figure is not None for figure in figures):
        return Line(row, figures)
    if row.peer is not None and peers.get(row.peer) is None:
        return Line(row, figures, "missing")
    return Line(row, figures, reasons[0] if reasons and reasons[0] else "not measured")


def number(value: float) -> str:
    """Three digits, or all of those before the point."""
    size = abs(value)
    if size >= 99.95:
        return f"{value:,.0f}"
    if size >= 9.995:
        return f"{value:.1f}"
    return f"{value:.2f}"


def spread(figure: Figure) -> str:
    return "" if figure.variation is None else f" ±{100 * figure.variation:.0f} %"


def ratio(value: float) -> str:
    if value < 0.095:
        return f"×{value:.1g}"
    return f"×{value:.2f}" if value < 9.95 else f"×{value:,.0f}"


def cell(table: Table, line: Line, index: int, reference: Figure | None) -> str:
    figure = line.figures[index]
    if figure is None:
        return line.absence
    text = number(figure.median) + spread(figure)
    if table.ratios and reference is not None and reference is not figure and reference.median > 0:
        text += f", {ratio(figure.median / reference.median)}"
    wanted = line.row.wanted[index] if line.row.wanted else None
    if wanted is not None:
        text += f" (wanted: {wanted:,g})"
    return text


def fastest_peers(lines: list[Line], index: int) -> float | None:
    """How many times as long as the first row the fastest peer takes. The library hosted by a peer is no peer."""
    ours = lines[0].figures[index]
    peers = [line.figures[index].median for line in lines
             if line.row.peer and not line.row.ours and line.figures[index]]
    return min(peers) / ours.median if peers and ours and ours.median > 0 else None


def absences(lines: list[Line]) -> list[str]:
    said = []
    for line in lines:
        if line.absence == "missing":
            peer = machine.PEERS[line.row.peer]
            said.append(f"Missing: {peer.title} (not installed: {peer.package}).")
        elif line.absence:
            said.append(f"Without figures: {line.row.label} ({line.absence}).")
    return list(dict.fromkeys(said))


def markdown_row(cells: list[str]) -> str:
    return "| " + " | ".join(cells) + " |"


def growth_of(figures: list[Figure | None]) -> str:
    known = [figure.median for figure in figures if figure is not None]
    return ratio(known[-1] / known[0]) if len(known) > 1 and known[0] > 0 else ""


def markdown(table: Table, lines: list[Line]) -> str:
    is_growth = table.plot_kind == "lines"
    head = [f"{table.title}, {table.unit}"] + [column.label for column in table.columns]
    rows = [head + (["last / first"] if is_growth else [])]
    rows.append(["---"] * len(rows[0]))
    for line in lines:
        label = f"**{line.row.label}**" if line.row.ours else line.row.label
        cells = [cell(table, line, i, lines[0].figures[i]) for i in range(len(table.columns))]
        rows.append([label] + cells + ([growth_of(line.figures)] if is_growth else []))
    if table.ratios and any(line.row.peer and not line.row.ours for line in lines):
        ratios = [fastest_peers(lines, i) for i in range(len(table.columns))]
        cells = ["" if value is None else ratio(value) for value in ratios]
        if table.wanted_ratios:
            cells = [f"{text} (wanted: ×{w:g})" if text else "" for text, w in zip(cells, table.wanted_ratios)]
        rows.append(["*fastest peer*"] + cells)
    text = "\n".join(markdown_row(row) for row in rows)
    for remark in absences(lines) + ([table.remark] if table.remark else []):
        text += f"\n\n{remark}"
    return text
