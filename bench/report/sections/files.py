from model import Column, Program, Row, Section, Table

ATTRIBUTES = [Column(f"text of {size:,}, {where}", {"size": size, "folder": folder})
              for size in (16, 1000) for folder, where in ((0, "disk"), (1, "memory"))]


def attributes(action: str) -> Table:
    return Table(f"To {action} an extended attribute", "ns", "files_attributes", [
        Row("raw call", field=f"raw_{action}"), Row("bytes", field="data", ours=True),
        Row("value", field="value", ours=True), Row("coding alone", field="coding", ours=True),
    ], ATTRIBUTES, name=f"{action}/{{folder}}/{{size}}")


SECTION = Section(
    key="files",
    title="Files and the system",
    programs=[Program("files_url_query", repetitions=5), Program("files_attributes", repetitions=3),
              Program("files_locks", repetitions=3), Program("files_identity", repetitions=5)],
    introduction="Least processor time of 15 to 41 rounds in turns, of which the median of the repetitions is shown; locks by "
    "the clock. Boost.URL is unpacked beside the Boost that the library is built with, as Debian's packages exclude each "
    "other.",
    tables=[
        Table("Merging two parameters into a query of four items", "ns", "files_url_query", [
            Row("`URLByAppendingQueryParameters`", field="ours", ours=True),
            Row("Boost.URL", field="boost", peer="boost_url"),
            Row("uriparser, the list between changed by hand", field="uriparser", peer="uriparser"),
            Row("Qt 6, `QUrlQuery`", field="qt", peer="qt6"),
        ], [Column("plain values", {"v": "plain"}), Column("values to encode", {"v": "encoded"})], name="merge/{v}"),
        attributes("get"),
        attributes("set"),
        Table("Locking and unlocking", "µs by the clock, median of 840", "files_locks", [
            Row("`lockFileAtPath`, `unlockFileAtPath`", field="operations_us", ours=True),
            Row("`QXFileLock`", field="file_lock_us", ours=True), Row("`QLockFile` of Qt 6", field="qt_us", peer="qt6"),
            Row("the same record written durably, and removed", field="durable_us"),
        ], [Column("disk", {"folder": 0}), Column("memory (tmpfs)", {"folder": 1})], name="lockAndUnlock/{folder}"),
        Table("What names the machine, once it is known", "ns", "files_identity", [
            Row("`QXUniqueMachineIdentifier`", field="identifier", ours=True, wanted=[20]),
            Row("`QXHostName`", field="host_name", ours=True, wanted=[20]),
            Row("`gethostname`, into a string", field="gethostname", peer="libc"),
        ], [Column("")], name="identity"),
    ],
)
