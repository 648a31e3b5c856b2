"""The machine that is measured on, and the versions of what is measured beside the library."""

import dataclasses
import datetime
import os
import pathlib
import platform
import re
import shutil
import subprocess


@dataclasses.dataclass(frozen=True)
class Peer:
    title: str
    package: str  # Debian's name of what has to be installed
    command: tuple[str, ...] = ()  # prints the version; without one, the package's version is taken
    header: str = ""  # a file with the version, for what is not installed but unpacked


PEERS = {
    "absl": Peer("Abseil", "libabsl-dev"),
    "asio": Peer("Boost (Asio, PropertyTree, Rational)", "libboost-dev"),
    "boost_url": Peer("Boost.URL", "libboost-url1.81-dev, unpacked by scripts/unpack-boost-url.sh",
                      header="build/peers/boost-url/usr/include/boost/version.hpp"),
    "date": Peer("Hinnant's `date`", "libhowardhinnant-date-dev"),
    "glib": Peer("GLib", "libglib2.0-dev"),
    "libc": Peer("C library", "libc6"),
    "libplist": Peer("libplist", "libplist-dev"),
    "libstdcxx": Peer("libstdc++", "libstdc++6"),
    "libuv": Peer("libuv", "libuv1-dev"),
    "lua": Peer("Lua", "liblua5.4-dev"),
    "nlohmann": Peer("nlohmann-json", "nlohmann-json3-dev"),
    "node": Peer("Node", "nodejs", command=("node", "--version")),
    "plistlib": Peer("Python's plistlib", "python3", command=("python3", "--version")),
    "qt5": Peer("Qt 5", "qtbase5-dev"),
    "qt6": Peer("Qt 6", "qt6-base-dev"),
    "sqlite": Peer("SQLite", "libsqlite3-dev"),
    "uriparser": Peer("uriparser", "liburiparser-dev"),
}


def output_of(*command: str) -> str | None:
    """What a command prints; None where it fails or is not there."""
    try:
        done = subprocess.run(command, capture_output=True, text=True, check=True)
    except (OSError, subprocess.CalledProcessError):
        return None
    return done.stdout.strip()


def package_version(name: str) -> str | None:
    # Of a package for several architectures there is a line for each.
    lines = output_of("dpkg-query", "-W", "-f=${db:Status-Status} ${Version}\n", name) or ""
    installed = [line.split(" ", 1)[1] for line in lines.splitlines() if line.startswith("installed ")]
    return installed[0] if installed else None


def version_of(peer: Peer) -> str | None:
    if peer.command:
        text = output_of(*peer.command) if shutil.which(peer.command[0]) else None
        return re.sub(r"^[^\d]*", "", text) if text else None
    if peer.header:
        path = pathlib.Path(peer.header)
        found = re.search(r'BOOST_LIB_VERSION "([^"]+)"', path.read_text()) if path.exists() else None
        return found.group(1).replace("_", ".") if found else None
    return package_version(peer.package)


def field_of_file(path: str, pattern: str) -> str:
    try:
        found = re.search(pattern, pathlib.Path(path).read_text(), re.MULTILINE)
    except OSError:
        found = None
    return found.group(1).strip() if found else "unknown"


def compiler_of(build: pathlib.Path) -> str:
    path = field_of_file(str(build / "CMakeCache.txt"), r"^CMAKE_CXX_COMPILER:\w+=(.*)$")
    text = output_of(path, "--version")
    return text.splitlines()[0] if text else "unknown"


def describe(build: pathlib.Path) -> dict:
    """The facts and the peers' versions, in the form of machine.json; a version is None where a peer is missing."""
    gigabytes = int(field_of_file("/proc/meminfo", r"^MemTotal:\s*(\d+)").replace("unknown", "0")) / 2**20
    load = os.getloadavg()
    facts = {
        "Date": datetime.datetime.now(datetime.timezone.utc).strftime("%Y-%m-%d %H:%M UTC"),
        "Processor": f"{field_of_file('/proc/cpuinfo', r'^model name[^:]*:(.*)$')}, {os.cpu_count()} cores",
        "Memory": f"{gigabytes:.0f} GB",
        "System": f"{field_of_file('/etc/os-release', r'^PRETTY_NAME=.(.*).$')}, Linux {platform.release()}",
        "Load before the run": ", ".join(f"{value:.2f}" for value in load) + " (1, 5 and 15 minutes)",
        "Compiler": compiler_of(build),
        "Build": field_of_file(str(build / "CMakeCache.txt"), r"^CMAKE_BUILD_TYPE:\w+=(.*)$"),
        "Library": output_of("git", "describe", "--always", "--dirty", "--tags") or "unknown",
        "Google Benchmark": package_version("libbenchmark-dev") or "unknown",
    }
    return {"facts": facts, "peers": {key: version_of(peer) for key, peer in PEERS.items()}}
