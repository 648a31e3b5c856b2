from model import Column, Program, Row, Section, Table

COSTS = [Column("time, least, ms", {"f": "least_ms"}), Column("median, ms", {"f": "median_ms"}),
         Column("private memory, KB", {"f": "beside_kb"}), Column("alone, KB", {"f": "alone_kb"})]
SECTION = Section(
    key="start_up",
    title="Start-up",
    programs=[Program("startup_cost", kind="startup")],
    introduction="What loading a library with all its symbols costs a C++ program that was empty before, 21 processes each. "
    "Private memory while another program has the same library loaded, and in a program that is alone with it: pages "
    "that are only read count as private then.",
    tables=[
        Table("Loading", "of 21 processes", "startup_cost", [
            Row("this library", "qxfoundation", ours=True, wanted=[1, None, None, 300]),
            Row("GLib", "glib-2.0", peer="glib"), Row("Qt 6 Core", "Qt6Core", peer="qt6"),
            Row("Qt 5 Core", "Qt5Core", peer="qt5"),
        ], COSTS, field="{f}", plot="start_up"),
    ],
)
