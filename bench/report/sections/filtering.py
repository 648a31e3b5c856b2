from model import Column, Program, Row, Section, Table

QUERIES = [("Q1", 1), ("Q2", 2), ("Q3", 3)]


def table(records: int, title: str, plot: str, wanted: dict[str, list[float]]) -> Table:
    plain = "{way}/Q:{q}/records:{records}"
    ours = [("dictionaries", "overDictionaries", "/layouts:1"), ("dictionaries of 8 layouts", "overDictionaries", "/layouts:8"),
            ("dictionaries of 64 layouts", "overDictionaries", "/layouts:64"),
            ("dictionaries, shuffled", "overShuffledDictionaries", ""), ("native objects", "overObjects", ""),
            ("plain structs by `Matching<T>`", "overStructs", "")]
    others = [("lambda over `vector<shared_ptr>`", "sharedPointersByHand", None),
              ("lambda over `vector` of structs", "structsByHand", None),
              ("Node, compiled closure", "node", "node"), ("nlohmann-json and a lambda", "nlohmannJson", "nlohmann"),
              ("Lua, compiled function", "lua", "lua"), ("SQLite in memory, prepared scan", "sqlite", "sqlite")]
    rows = [Row(label, plain.replace("{way}", way) + layouts, ours=True, wanted=wanted.get(label))
            for label, way, layouts in ours]
    rows += [Row(label, plain.replace("{way}", way), peer=peer) for label, way, peer in others]
    return Table(title, "ns a record", "qualifier_filter", rows,
                 [Column(label, {"q": q, "records": records}) for label, q in QUERIES], field="ns", plot=plot)


SECTION = Section(
    key="filtering",
    title="Filtering",
    programs=[Program("qualifier_filter", repetitions=5, min_time=0.03)],
    introduction="Each way's hits are compared with the loop's before anything is timed. Q1 `age > %d` (69 % are hits), "
    "Q2 `age > %d and name like %@` (3 %), Q3 a city of two, a score, and no name with an x (8 %). Node measures itself "
    "by the clock, once.",
    tables=[
        table(10_000, "Filtering 10,000 records", "filter_10000",
              {"dictionaries": [6, 8, 11], "native objects": [6, 8, 11]}),
        table(1_000_000, "Filtering 1,000,000 records", "filter_1000000",
              {"dictionaries": [18, 17, 19], "dictionaries, shuffled": [30, 35, 40], "native objects": [15, 13, 14]}),
        Table("Memory", "bytes a record", "qualifier_filter",
              [Row("a dictionary", "overDictionaries/Q:1/records:1000000/layouts:1", ours=True, wanted=[340]),
               Row("a native object", "overObjects/Q:1/records:1000000", ours=True)],
              [Column("of 1,000,000")], field="bytes"),
        Table("Parsing and binding Q2", "ns", "qualifier_filter", [Row("without records", "parseAndBind", ours=True)],
              [Column("")]),
    ],
)
