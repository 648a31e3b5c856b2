from model import Column, Program, Row, Section, Table

SIZES = [100, 1000, 10_000, 100_000, 1_000_000]
COLUMNS = [Column(f"{size:,}", {"n": size}) for size in SIZES]


def table(title: str, unit: str, plot: str, rows: list[Row]) -> Table:
    return Table(title, unit, "growth", rows, COLUMNS, field="ns", ratios=False, plot=plot, plot_kind="lines")


def own(label: str, name: str) -> Row:
    return Row(label, f"{name}/{{n}}", ours=True)


def other(label: str, name: str) -> Row:
    return Row(label, f"{name}/{{n}}")


SECTION = Section(
    key="growth",
    title="Growth",
    programs=[Program("growth", repetitions=3, min_time=0.02)],
    introduction="Cost against size over four orders of magnitude. A cost for each element that stays the same is "
    "proportional to the size; sorting by comparisons may grow with the logarithm. All else that rises here is the way to "
    "memory, beyond what the caches hold.",
    tables=[
        table("Growth of filtering by `number > %d and name like %@`", "ns a record", "growth_filter", [
            own("dictionaries", "filter/dictionaries"), own("native objects", "filter/objects"),
            other("lambda over `vector<shared_ptr>`", "filter/by_hand")]),
        table("Growth of sorting", "ns an element", "growth_sort", [
            own("dictionaries by number", "sort/dictionaries_by_number"),
            own("dictionaries by name", "sort/dictionaries_by_name"),
            other("`std::stable_sort` of `shared_ptr` by name", "sort/by_hand")]),
        table("Growth of property lists", "ns a dictionary", "growth_property_lists", [
            own("XML read", "property_list/xml_read"), own("XML write", "property_list/xml_write"),
            own("binary read", "property_list/binary_read"), own("binary write", "property_list/binary_write")]),
        table("Growth of preferences", "ns a key", "growth_preferences", [
            own("read, in any order", "preferences/read"), own("read, in the order of the store", "preferences/read_in_order"),
            own("set, in any order", "preferences/set"), own("load", "preferences/load"),
            own("save, durably, by the clock", "preferences/save"),
            other("read, in any order, `unordered_map` of whole paths", "preferences/read_one_table"),
            other("read, in any order, Boost.PropertyTree", "preferences/read_property_tree")]),
        table("Growth of messages", "ns a waiting message", "growth_messages", [
            own("send", "messages/send"), own("perform", "messages/perform")]),
    ],
)
