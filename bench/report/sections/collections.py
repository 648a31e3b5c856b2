from model import Column, Program, Row, Section, Table

PLACES = [Column("1,000 places, Latin-1", {"p": 1000, "w": 0}), Column("40,000 places, Latin-1", {"p": 40000, "w": 0}),
          Column("1,000 places, wide", {"p": 1000, "w": 1}), Column("40,000 places, wide", {"p": 40000, "w": 1})]
SIZES = [Column(f"{way}, {size:,}", {"way": way, "n": size}) for way in ("map", "filter") for size in (1000, 100_000)]
WIDTHS = [Column(f"{width:,} a node", {"w": width}) for width in (1, 2, 10, 1000)]
LEAST = "Each figure is the least of 15 rounds in turns, of which the median of the repetitions is shown."


def membership(label: str, counter: str) -> Row:
    return Row(label, "membership", field=counter, ours=True)


SECTION = Section(
    key="collections",
    title="Collections",
    programs=[Program("collections_strings", repetitions=5), Program("collections_arrays", repetitions=5),
              Program("collections_tree", repetitions=3)],
    introduction=LEAST,
    tables=[
        Table("Replacing a text in 1 MB", "µs", "collections_strings", [
            Row("this library", field="ours", ours=True), Row("Qt 5 `QString::replace`", field="qt", peer="qt5"),
            Row("`absl::StrReplaceAll`", field="absl", peer="absl"),
        ], PLACES, name="replaceText/places:{p}/wide:{w}", plot="replace"),
        Table("Replacing the members of a set in 1 MB", "µs", "collections_strings", [
            Row("this library", field="ours", ours=True), Row("loop by hand", field="loop"),
        ], PLACES, name="replaceMembers/places:{p}/wide:{w}"),
        Table("Mapping, and keeping half", "ns an element", "collections_arrays", [
            Row("`qxMap`, `qxFilter`", field="ours", ours=True), Row("loop into a vector", field="loop"),
            Row("loop into a mutable array", field="loop_array"),
        ], SIZES, name="{way}/{n}"),
        Table("Reducing to a sum", "ns an element", "collections_arrays", [
            Row("`qxReduce`", field="ours", ours=True), Row("loop", field="loop"),
        ], [Column("1,000", {"n": 1000}), Column("100,000", {"n": 100_000})], name="reduce/{n}"),
        Table("Shuffling", "ns an element", "collections_arrays", [
            Row("`random()` as often", field="random"), Row("shuffle", field="shuffle", ours=True),
        ], [Column("1,000", {"n": 1000}), Column("100,000", {"n": 100_000})], name="shuffle/{n}"),
        Table("Membership of 100,000 in 100,000", "ms", "collections_arrays", [
            membership("intersection", "intersect_ms"), membership("difference", "difference_ms"),
            membership("add if absent", "add_absent_ms"), membership("remove the equal", "remove_equal_ms"),
            membership("remove the others", "remove_others_ms"),
        ], [Column("")], ratios=False),
        Table("A tree of 1,000,000 nodes, by children", "ns a node", "collections_tree", [
            Row("postorder", field="postorder", ours=True), Row("preorder", field="preorder", ours=True),
            Row("search", field="find", ours=True),
        ], WIDTHS, name="traverse/width:{w}", ratios=False),
    ],
)
