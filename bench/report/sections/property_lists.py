from model import Column, Program, Row, Section, Table

OPERATIONS = [Column("XML read", {"o": "xml_read"}), Column("XML write", {"o": "xml_write"}),
              Column("binary read", {"o": "binary_read"}), Column("binary write", {"o": "binary_write"})]
SECTION = Section(
    key="property_lists",
    title="Property lists",
    programs=[Program("property_list", repetitions=5, min_time=0.05)],
    introduction="A list of 50,000 dictionaries of seven entries (integer, two strings, real, bool, date, data), 17.0 MB "
    "as XML and 6.6 MB as binary. What the peers read and write is compared with the list before anything is timed. "
    "Freeing what was read is measured for nobody.",
    tables=[
        Table("A property list of 50,000 dictionaries", "ms", "property_list", [
            Row("this library", "{o}/qx", ours=True),
            Row("libplist", "{o}/libplist", peer="libplist"),
            Row("Python's plistlib", "{o}/plistlib", field="real_time", peer="plistlib"),
        ], OPERATIONS, scale=1e-6, plot="property_lists", wanted_ratios=[1.5, 2.5, 3, 10]),
    ],
)
