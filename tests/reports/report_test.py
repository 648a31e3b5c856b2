"""The report of the benchmarks shows what was measured, and names what is missing or can not be read."""

import pathlib
import shutil
import sys
import tempfile
import unittest
import xml.etree.ElementTree

HERE = pathlib.Path(__file__).parent
ROOT = HERE.parents[1]
sys.path.insert(0, str(ROOT / "bench" / "report"))
sys.dont_write_bytecode = True

import measure
import report
from model import Column, Program, ReportError, Row, Section, Table, field_of, name_of
from results import AllResults
from sections import SECTIONS

QUERIES = [Column("Q1", {"q": 1}), Column("`Q2` <&>", {"q": 2})]
BARS = Table("Filtering", "ns a record", "filter", [
    Row("dictionaries", "ours/Q:{q}", ours=True, wanted=[5, None]),
    Row("objects", ["ours/Q:2", None], ours=True),
    Row("Qt", "qt/Q:{q}", peer="qt6"),
    Row("SQLite", "sqlite/Q:{q}", peer="sqlite"),
    Row("GLib", "glib/Q:{q}", peer="glib"),
], QUERIES, field="ns", plot="bars", wanted_ratios=[3, 4])
LINES = Table("Growth", "µs", "filter", [Row("here", "size/{n}", ours=True)],
              [Column("100", {"n": 100}), Column("10,000", {"n": 10_000})], scale=1e-3, ratios=False,
              plot="lines", plot_kind="lines")


def section_of(*tables: Table) -> Section:
    return Section("filtering", "Filtering", [Program("filter")], list(tables), "How it is done.")


class Report(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.results = self.folder / "results"
        shutil.copytree(HERE / "results", self.results)
        self.notes = self.folder / "notes"
        self.notes.mkdir()
        (self.notes / "filtering.md").write_text("What helped: thinking.\n")

    def made(self, *tables: Table) -> str:
        report.write_report([section_of(*tables)], AllResults(self.results), self.notes, self.folder)
        return (self.folder / "benchmarks.md").read_text()

    def test_tables_show_medians_with_spread_ratios_and_what_is_wanted(self) -> None:
        page = self.made(BARS, LINES)
        for line in [
            "| Filtering, ns a record | Q1 | `Q2` <&> |",
            "| **dictionaries** | 6.20 ±1 % (wanted: 5) | 8.00 |",
            "| **objects** | 8.00, ×1.29 |  |",
            "| Qt | 12.4, ×2.00 | 1,234, ×154 |",
            "| *fastest peer* | ×2.00 (wanted: ×3) | ×154 (wanted: ×4) |",
            "| **here** | 2,000 | 3,000 | ×1.50 |",
        ]:
            self.assertIn(line + "\n", page)

    def test_missing_peers_and_reasons_are_named(self) -> None:
        page = self.made(BARS)
        self.assertIn("| SQLite | missing | missing |", page)
        self.assertIn("Missing: SQLite (not installed: libsqlite3-dev).", page)
        self.assertIn("| SQLite | **missing** (libsqlite3-dev) |", page)
        self.assertIn("Without figures: GLib (no loop <here> & now).", page)

    def test_the_page_tells_its_maker_its_machine_and_its_prose(self) -> None:
        page = self.made(BARS)
        self.assertTrue(page.startswith("<!-- Made by scripts/bench.sh: do not edit."))
        self.assertIn("| Processor | Some Processor, 2 cores |", page)
        self.assertIn("`bench_filter`; measured from 2026-01-02 03:04, load 0.2 to 0.2 before its programs.", page)
        self.assertLess(page.index("How it is done."), page.index("| Qt |"))
        self.assertLess(page.index("| Qt |"), page.index("What helped: thinking."))
        self.assertIn("![Filtering](plots/bars.svg)", page)

    def test_plots_are_small_well_formed_and_the_same_each_time(self) -> None:
        self.made(BARS, LINES)
        plots = {path: path.read_bytes() for path in (self.folder / "plots").iterdir()}
        self.assertEqual({path.name for path in plots}, {"bars.svg", "lines.svg"})
        for path, content in plots.items():
            root = xml.etree.ElementTree.fromstring(content)
            self.assertTrue(root.tag.endswith("svg"))
            self.assertLess(len(content), 20_000)
        bars = xml.etree.ElementTree.parse(self.folder / "plots" / "bars.svg").getroot()
        texts = list(bars.itertext())
        for shown in ["Filtering", "Q2 <&>", "dictionaries", "6.20", "missing", "no loop <here> & now"]:
            self.assertIn(shown, texts)
        self.made(BARS, LINES)
        for path, content in plots.items():
            self.assertEqual(path.read_bytes(), content)

    def test_what_can_not_be_read_is_said_with_its_place(self) -> None:
        file = self.results / "filter.json"
        whole = file.read_text()
        for content, said in [
            (None, "filter.json can not be read (No such file or directory): run scripts/bench.sh first"),
            (whole[:100], "filter.json is no JSON"),
            ("[]", "filter.json is no result of a benchmark"),
            ('{"benchmarks": [{}]}', "filter.json: an entry has no 'run_name'"),
            (whole.replace("6.2", '"fast"'), "filter.json: ours/Q:1: \"ns\" is no number: 'fast'"),
            (whole.replace("ours/Q:1", "mine/Q:1"), 'filter.json has no "ns" of the benchmark "ours/Q:1"'),
            (whole.replace('"ms"', '"fortnights"'), 'the unit "fortnights" is unknown'),
        ]:
            file.unlink() if content is None else file.write_text(content)
            with self.assertRaises(ReportError) as caught:
                self.made(BARS, LINES)
            self.assertIn(said, str(caught.exception))
        file.write_text(whole)
        (self.results / "machine.json").write_text("{}")
        with self.assertRaisesRegex(ReportError, "machine.json does not describe a machine"):
            self.made(BARS)

    def test_lines_of_the_start_up_program_become_figures(self) -> None:
        printed = ("libqxfoundation.so           0.290 ms (median 0.350)     48 KB, alone    280 KB\n"
                   "libQt6Core.so.6          can not be loaded\n")
        self.assertEqual(measure.startup_entries(printed), [
            {"run_name": "qxfoundation", "run_type": "aggregate", "aggregate_name": "median", "least_ms": 0.29,
             "median_ms": 0.35, "beside_kb": 48, "alone_kb": 280}])


class Sections(unittest.TestCase):
    def test_every_table_can_be_made(self) -> None:
        keys = [section.key for section in SECTIONS]
        plots = [table.plot for section in SECTIONS for table in section.tables if table.plot]
        self.assertEqual(len(set(keys)), len(keys))
        self.assertEqual(len(set(plots)), len(plots))
        for section in SECTIONS:
            programs = {program.name for program in section.programs}
            for table in section.tables:
                self.assertIn(table.program, programs)
                self.assertTrue(table.rows[0].ours or not table.rows[0].peer, table.title)
                for row in table.rows:
                    self.assertIn(row.peer, {None, *report.machine.PEERS})
                    for given in (row.name, row.wanted):
                        self.assertTrue(not isinstance(given, list) or len(given) == len(table.columns), row.label)
                    for index in range(len(table.columns)):
                        name_of(table, row, index), field_of(table, row, index)

    def test_every_note_has_its_section_and_the_script_names_them_all(self) -> None:
        keys = {section.key for section in SECTIONS}
        self.assertLessEqual({path.stem for path in (ROOT / "bench" / "notes").glob("*.md")}, keys)
        usage = (ROOT / "scripts" / "bench.sh").read_text()
        self.assertEqual([key for key in keys if key not in usage], [])


if __name__ == "__main__":
    unittest.main()
