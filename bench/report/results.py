"""Reads what was measured: one file of Google Benchmark's JSON for each program, and machine.json."""

import dataclasses
import json
import math
import pathlib
import re

from model import ReportError

NANOSECONDS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
# What Google Benchmark adds to a name to tell how it was measured.
HOW = re.compile(r"/(iterations:\d+|repeats:\d+|manual_time|real_time|process_time)(?=/|$)")


@dataclasses.dataclass(frozen=True)
class Figure:
    median: float
    variation: float | None  # standard deviation over mean; None where there was one repetition


class Results:
    """The figures of one program."""

    def __init__(self, path: pathlib.Path):
        self.path = path
        try:
            content = json.loads(path.read_text())
        except OSError as error:
            raise ReportError(f"{path} can not be read ({error.strerror}): run scripts/bench.sh first") from error
        except ValueError as error:
            raise ReportError(f"{path} is no JSON: {error}") from error
        if not isinstance(content, dict) or not isinstance(content.get("benchmarks"), list):
            raise ReportError(f"{path} is no result of a benchmark: it has no list \"benchmarks\"")
        self.context = content.get("context", {})
        self.reasons: dict[str, str] = {}  # by name, why it was not measured
        self._values: dict[str, dict[str, dict]] = {}  # by name and aggregate
        for entry in content["benchmarks"]:
            self._add(entry)

    def _add(self, entry: dict) -> None:
        try:
            name = HOW.sub("", entry["run_name"])
            if entry.get("error_occurred"):
                self.reasons[name] = entry.get("error_message", "it failed")
                return
            # Without repetitions there are no aggregates: the one run is the median.
            is_aggregate = entry["run_type"] == "aggregate"
            aggregate = entry["aggregate_name"] if is_aggregate else "only"
        except (KeyError, TypeError, AttributeError) as error:
            raise ReportError(f"{self.path}: an entry has no {error}") from error
        self._values.setdefault(name, {})[aggregate] = entry

    def names(self) -> list[str]:
        return list(self._values)

    def figure(self, name: str, field: str) -> Figure | None:
        """None where the benchmark was not run, or skipped what the field is about."""
        entries = self._values.get(name)
        if entries is None:
            return None
        entry = entries.get("median", entries.get("only", {}))
        median = entry.get(field)
        if median is None:
            return None
        if not isinstance(median, (int, float)) or not math.isfinite(median):
            raise ReportError(f"{self.path}: {name}: \"{field}\" is no number: {median!r}")
        if field in ("cpu_time", "real_time"):
            unit = entry.get("time_unit", "ns")
            if unit not in NANOSECONDS:
                raise ReportError(f"{self.path}: {name}: the unit \"{unit}\" is unknown")
            median *= NANOSECONDS[unit]
        variation = entries.get("cv", {}).get(field)
        return Figure(float(median), variation if isinstance(variation, (int, float)) else None)


class AllResults:
    """The programs' results of one folder, each read when it is first asked for."""

    def __init__(self, folder: pathlib.Path):
        self.folder = folder
        self._known: dict[str, Results] = {}

    def program(self, name: str) -> Results:
        if name not in self._known:
            self._known[name] = Results(self.folder / f"{name}.json")
        return self._known[name]

    def machine(self) -> dict:
        path = self.folder / "machine.json"
        try:
            machine = json.loads(path.read_text())
            return {"peers": dict(machine["peers"]), "facts": dict(machine["facts"])}
        except OSError as error:
            raise ReportError(f"{path} can not be read ({error.strerror}): run scripts/bench.sh first") from error
        except (ValueError, KeyError, TypeError) as error:
            raise ReportError(f"{path} does not describe a machine: {error!r}") from error
