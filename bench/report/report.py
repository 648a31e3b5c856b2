"""Measures what sections/ names and makes the report: docs/benchmarks.md and the plots beside it.

    report.py [--quick] [--only SECTION]... [--report-only]

A whole run takes some 15 minutes. --quick measures next to nothing, to see that everything works. --only measures
some sections. --report-only measures nothing: it makes the report of what was kept. The report of a part, and of a
quick run, is made in build/bench/report, so that nobody takes it for the real one.
"""

import argparse
import pathlib
import sys
import textwrap

import machine
import measure
import plot
import tables
from model import ReportError, Section
from results import AllResults
from sections import SECTIONS

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = ROOT / "build" / "release"
WIDTH = 120  # of prose

HEAD = """<!-- Made by scripts/bench.sh: do not edit. Tables are described in bench/report/sections/, prose is in bench/notes/. -->

# Benchmarks

This page is made by one command, `scripts/bench.sh`, which builds and runs every benchmark beside its peers. Each
program compares what its ways of doing the work give before it times them.
"""

READING = """Figures are medians of the repetitions, which run in random order, with ± the standard deviation over the mean. Where
nothing else is said, they are processor time. Behind a comma stands how many times as long as the table's first row
it took. Rows in bold are the library's; a way without a name of its own is what a program would write by hand.

    scripts/bench.sh --install        # installs what only benchmarks need, measures everything (some 15 minutes)
    scripts/bench.sh --only values    # measures one section anew; its report is build/bench/report/benchmarks.md
    scripts/bench.sh --report-only    # makes this page of what was measured last
    build/release/bin/bench_values_dates --benchmark_filter=read    # each program alone, as Google Benchmark has it
"""


def machine_text(described: dict) -> str:
    rows = [["Machine", ""], ["---", "---"]] + [[key, value] for key, value in described["facts"].items()]
    rows += [[machine.PEERS[key].title, version or f"**missing** ({machine.PEERS[key].package})"]
             for key, version in described["peers"].items() if key in machine.PEERS]
    return "\n".join(tables.markdown_row(row) for row in rows) + "\n"


def measured_text(section: Section, results: AllResults) -> str:
    """Which programs, when, and beside what."""
    contexts = [results.program(program.name).context for program in section.programs]
    names = ", ".join(f"`{program.name if program.kind != 'benchmark' else 'bench_' + program.name}`"
                      for program in section.programs)
    dates = sorted(context["date"] for context in contexts if context.get("date"))
    loads = [context["load_avg"][0] for context in contexts if context.get("load_avg")]
    text = names
    if dates:
        text += f"; measured from {dates[0][:16].replace('T', ' ')}"
    if loads:
        text += f", load {min(loads):.1f} to {max(loads):.1f} before its programs"
    return textwrap.fill(text + ".", WIDTH)


def section_text(section: Section, results: AllResults, notes: pathlib.Path, output: pathlib.Path) -> str:
    peers = results.machine()["peers"]
    parts = [f"## {section.title}", measured_text(section, results)]
    if section.introduction:
        parts.append(textwrap.fill(section.introduction, WIDTH))
    for table in section.tables:
        rows = tables.lines_of(table, results, peers)
        parts.append(tables.markdown(table, rows))
        if table.plot:
            path = output / "plots" / f"{table.plot}.svg"
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(plot.svg(table, rows))
            parts.append(f"![{plot.plain(table.title)}](plots/{table.plot}.svg)")
    note = notes / f"{section.key}.md"
    if note.exists():
        parts.append(note.read_text().strip())
    return "\n\n".join(parts) + "\n"


def write_report(sections: list[Section], results: AllResults, notes: pathlib.Path, output: pathlib.Path) -> None:
    """Writes OUTPUT/benchmarks.md and OUTPUT/plots/."""
    output.mkdir(parents=True, exist_ok=True)
    parts = [HEAD, machine_text(results.machine()), READING]
    parts += [section_text(section, results, notes, output) for section in sections]
    (output / "benchmarks.md").write_text("\n".join(parts))


def chosen(keys: list[str]) -> list[Section]:
    unknown = set(keys) - {section.key for section in SECTIONS}
    if unknown:
        raise ReportError(f"there is no section {', '.join(sorted(unknown))}; there are "
                          + ", ".join(section.key for section in SECTIONS))
    return [section for section in SECTIONS if not keys or section.key in keys]


def main() -> None:
    parser = argparse.ArgumentParser(prog="bench.sh", description="Measures everything and makes docs/benchmarks.md.")
    parser.add_argument("--quick", action="store_true", help="measure next to nothing, to see that it works")
    parser.add_argument("--only", action="append", default=[], metavar="SECTION", help="measure this section")
    parser.add_argument("--report-only", action="store_true", help="measure nothing, use what was kept")
    options = parser.parse_args()
    try:
        sections = chosen(options.only)
        kept = ROOT / "build" / "bench" / ("quick" if options.quick else "results")
        if not options.report_only:
            measure.measure(sections, BUILD, kept, options.quick)
        is_whole = not options.quick and not options.only
        output = ROOT / "docs" if is_whole else ROOT / "build" / "bench" / "report"
        write_report(sections, AllResults(kept), ROOT / "bench" / "notes", output)
    except ReportError as error:
        sys.exit(f"bench.sh: {error}")
    except KeyboardInterrupt:
        sys.exit("bench.sh: interrupted; what was measured before is kept in build/bench")
    print(f"{output.relative_to(ROOT)}/benchmarks.md is made")


if __name__ == "__main__":
    main()
