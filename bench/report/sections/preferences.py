from model import Column, Program, Row, Section, Table

SWEEP = [(10, 1000), (100, 100), (1000, 10), (1000, 100), (10_000, 1)]
SECTION = Section(
    key="preferences",
    title="Preferences",
    programs=[Program("preferences", repetitions=7, min_time=0.05)],
    introduction="10,000 keys at three levels (25, 20 and 20 of a level, in random order). Saving is measured by the "
    "clock; this library saves durably, the peers do not.",
    tables=[
        Table("Reading and setting an integer", "ns", "preferences", [
            Row("this library", ["readInteger", "setInteger"], ours=True, wanted=[60, 150]),
            Row("the same, of a store read from its file", ["readIntegerLoaded", None], ours=True),
            Row("the same by one constant typed key", ["readIntegerByKey", None], ours=True),
            Row("`QSettings`", ["qtReadInteger", "qtSetInteger"], peer="qt6"),
            Row("GLib key file", ["glibReadInteger", "glibSetInteger"], peer="glib"),
            Row("Boost.PropertyTree", ["boostReadInteger", "boostSetInteger"], peer="asio"),
        ], [Column("read"), Column("set, no observer")], plot="preferences"),
        Table("Loading and saving 10,000 keys", "ms", "preferences", [
            Row("this library", ["load", "saveDurably"], ours=True, wanted=[3, 4]),
            Row("`QSettings`", ["qtLoad", "qtSave"], peer="qt6"),
            Row("GLib key file", ["glibLoad", "glibSave"], peer="glib"),
        ], [Column("load", {"f": "cpu_time"}), Column("save, by the clock", {"f": "real_time"})], field="{f}", scale=1e-6,
            plot="preferences_files"),
        Table("Setting one path while paths are observed", "ns", "preferences",
              [Row("this library", "setObserved/{n}", ours=True)],
              [Column("none", {"n": 0}), Column("that one", {"n": 1}), Column("1,000", {"n": 1000})], ratios=False),
        Table("A change on the user defaults, below the last branch", "µs", "preferences",
              [Row("branches × settings in each", "setOnUserDefaults/{b}/{s}", ours=True)],
              [Column(f"{b:,} × {s:,}", {"b": b, "s": s}) for b, s in SWEEP], scale=1e-3, ratios=False),
    ],
)
