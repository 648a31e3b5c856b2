from model import Column, Program, Row, Section, Table

BITS = [Column(f"{bits} bits", {"bits": bits}) for bits in (8, 20, 40, 63)]
SECTION = Section(
    key="values",
    title="Values",
    programs=[Program("values_dates", repetitions=9), Program("values_fractions", repetitions=9),
              Program("values_sizes", repetitions=9), Program("values_cursor", repetitions=5, min_time=0.01)],
    tables=[
        Table("Dates", "ns each", "values_dates", [
            Row("this library", ["readWithOffset", "readLocal", "write"], ours=True),
            Row("this library, strictly (RFC 3339)", ["readStrict", None, "writeStrict"], ours=True),
            Row("`strptime`, `strftime`", ["readWithOffsetByStrptime", "readLocalByStrptime", "writeByStrftime"],
                peer="libc"),
            Row("Abseil", ["readWithOffsetByAbseil", "readLocalByAbseil", "writeByAbseil"], peer="absl"),
            Row("Hinnant's `date`", ["readWithOffsetByDateLibrary", None, "writeByDateLibrary"], peer="date"),
        ], [Column("read with offset"), Column("read as local time"), Column("write in UTC")], field="ns", plot="dates",
            remark="Written strictly, a date keeps its fraction of a second where it has one."),
        Table("Fractions from integers", "ns each", "values_fractions", [
            Row("here, an object each", "fromIntegers/{bits}", ours=True),
            Row("`std::gcd` of the same pair alone", "gcdAlone/{bits}"),
            Row("`boost::rational`", "rational/{bits}", peer="asio"),
        ], BITS, field="ns"),
        Table("Fractions otherwise", "ns each", "values_fractions", [
            Row("from a double", "fromDouble", ours=True), Row("description", "description", ours=True),
        ], [Column("")], field="ns", ratios=False),
        Table("Size texts", "ns each", "values_sizes", [
            Row("of a number", "ofNumber", ours=True), Row("of a text that is a number", "ofString", ours=True),
            Row("`thousandFormat`", "thousands", ours=True),
            Row("`snprintf` with the same decisions", "bySnprintf", peer="libc"),
        ], [Column("")], field="ns"),
        Table("Lines of a file of 100 MB", "ms", "values_cursor", [
            Row("`QXDataCursor`", "linesByCursor", ours=True),
            Row("a loop over `memchr` that makes the same strings", "linesByMemchr"),
            Row("`std::getline` into one `std::string`", "linesByGetline", peer="libstdcxx"),
        ], [Column("")], field="ms"),
    ],
)
