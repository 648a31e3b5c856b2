"""What a report consists of. The folder sections/ says with these words which figures stand in which table."""

import dataclasses


class ReportError(Exception):
    """Why there is no report; its text is for the person who wanted one."""


@dataclasses.dataclass(frozen=True)
class Program:
    """A benchmark program `bench_NAME`, and how long it is measured.

    `min_time` is in seconds, for each repetition of each benchmark. A kind other than "benchmark" is a program with
    an output of its own, which measure.py understands.
    """

    name: str
    repetitions: int = 7
    min_time: float = 0.1
    kind: str = "benchmark"


@dataclasses.dataclass(frozen=True)
class Row:
    """One way of doing the work.

    `name` is the name of its benchmark, in which the words of a column stand in braces, or a list with the name for
    each column and None where the way has no such thing. `field` is what is read of it. Both are the table's where
    they are not given. `peer` is the key of machine.PEERS that the way depends on. `wanted` has a figure for each
    column, or None.
    """

    label: str
    name: str | list[str | None] | None = None
    field: str | None = None
    peer: str | None = None
    ours: bool = False
    wanted: list[float | None] | None = None


@dataclasses.dataclass(frozen=True)
class Column:
    label: str
    words: dict[str, object] = dataclasses.field(default_factory=dict)


@dataclasses.dataclass(frozen=True)
class Table:
    """The figures of one program, a row for each way.

    `field` is a counter, or `cpu_time` or `real_time`, which are read as nanoseconds; figures are multiplied by
    `scale` to become `unit`. The first row is what ratios compare with, unless `ratios` is off. `plot` names the
    plot, of the kind "bars" or "lines"; lines run over the word `n` of the columns. `wanted_ratios` are how many
    times as long the fastest peer should take, for each column.
    """

    title: str
    unit: str
    program: str
    rows: list[Row]
    columns: list[Column]
    name: str = ""
    field: str = "cpu_time"
    scale: float = 1.0
    ratios: bool = True
    plot: str | None = None
    plot_kind: str = "bars"
    wanted_ratios: list[float] | None = None
    remark: str = ""


@dataclasses.dataclass(frozen=True)
class Section:
    """A chapter; notes/KEY.md beside the reports' folder follows its tables."""

    key: str
    title: str
    programs: list[Program]
    tables: list[Table]
    introduction: str = ""


def name_of(table: Table, row: Row, index: int) -> str | None:
    """The benchmark that a cell is read of; None where the row has nothing in that column."""
    name = row.name if row.name is not None else table.name
    if isinstance(name, list):
        name = name[index]
    return None if name is None else name.format(**table.columns[index].words)


def field_of(table: Table, row: Row, index: int) -> str:
    return (row.field or table.field).format(**table.columns[index].words)
