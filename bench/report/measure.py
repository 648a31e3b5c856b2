"""Runs the benchmark programs and keeps what they measured as JSON."""

import json
import os
import pathlib
import re
import subprocess
import sys
import time

import machine
from model import Program, ReportError, Section

# The peers that loading the library is compared with.
STARTUP_PEERS = ["libglib-2.0.so.0", "libQt6Core.so.6", "libQt5Core.so.5"]
STARTUP_LINE = re.compile(r"(\S+)\s+([\d.]+) ms \(median ([\d.]+)\)\s+(\d+) KB, alone\s+(\d+) KB")


def run_benchmark(program: Program, build: pathlib.Path, result: pathlib.Path, quick: bool) -> None:
    binary = build / "bin" / f"bench_{program.name}"
    if not binary.exists():
        raise ReportError(f"{binary} is not there; where Google Benchmark is missing, scripts/bench.sh --install "
                          "installs it")
    partial = result.with_suffix(".partial")
    command = [
        str(binary), f"--benchmark_out={partial}", "--benchmark_out_format=json",
        f"--benchmark_repetitions={2 if quick else program.repetitions}",
        f"--benchmark_min_time={0.001 if quick else program.min_time}",
        "--benchmark_enable_random_interleaving=true", "--benchmark_report_aggregates_only=true",
    ]
    done = subprocess.run(command, capture_output=True, text=True)
    if done.returncode != 0:
        raise ReportError(f"bench_{program.name} failed ({done.returncode}):\n{(done.stdout + done.stderr)[-2000:]}")
    partial.replace(result)  # an interrupted run leaves the file of the one before


def startup_entries(text: str) -> list[dict]:
    """The lines of startup_cost in the form of Google Benchmark's aggregates."""
    entries = []
    for name, least, median, shared, alone in STARTUP_LINE.findall(text):
        entries.append({
            "run_name": re.sub(r"^lib|[.]so.*$", "", name), "run_type": "aggregate", "aggregate_name": "median",
            "least_ms": float(least), "median_ms": float(median), "beside_kb": int(shared), "alone_kb": int(alone)})
    return entries


def run_startup(build: pathlib.Path, result: pathlib.Path) -> None:
    command = [str(build / "bin" / "startup_cost"), str(build / "lib" / "libqxfoundation.so"), *STARTUP_PEERS]
    try:
        # It fails where the library costs more than its limits, which the report shows anyway.
        text = subprocess.run(command, capture_output=True, text=True).stdout
    except OSError as error:
        raise ReportError(f"{command[0]} can not be run: {error.strerror}") from error
    entries = startup_entries(text)
    if not entries:
        raise ReportError(f"{command[0]} printed no figures:\n{text}")
    context = {"date": time.strftime("%Y-%m-%dT%H:%M:%S%z"), "load_avg": list(os.getloadavg())}
    result.write_text(json.dumps({"context": context, "benchmarks": entries}, indent=1) + "\n")


def measure(sections: list[Section], build: pathlib.Path, results: pathlib.Path, quick: bool) -> None:
    results.mkdir(parents=True, exist_ok=True)
    facts = machine.describe(build)
    for section in sections:
        for program in section.programs:
            print(f"{section.key}: {program.name} ", end="", flush=True, file=sys.stderr)
            start = time.monotonic()
            result = results / f"{program.name}.json"
            if program.kind == "startup":
                run_startup(build, result)
            else:
                run_benchmark(program, build, result, quick)
            print(f"({time.monotonic() - start:.0f} s)", file=sys.stderr)
    (results / "machine.json").write_text(json.dumps(facts, indent=1) + "\n")
