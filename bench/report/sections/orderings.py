from model import Column, Program, Row, Section, Table

SORTED = [Column("number, distinct", {"set": "distinct", "key": "number"}),
          Column("name, distinct", {"set": "distinct", "key": "name"}),
          Column("number, 1000 keys", {"set": "thousand_keys", "key": "number"}),
          Column("name, 1000 keys", {"set": "thousand_keys", "key": "name"})]
INSERTED = [Column("number, any order", {"order": "any_order", "key": "number"}),
            Column("name, any order", {"order": "any_order", "key": "name"}),
            Column("number, sorted already", {"order": "by_number", "key": "number"})]

SECTION = Section(
    key="orderings",
    title="Orderings",
    programs=[Program("sort", repetitions=5, min_time=0.02), Program("sorted_insertion", repetitions=3, min_time=0.02)],
    introduction="Each run first looks whether what it made is in order.",
    tables=[
        Table("Sorting 1,000,000 in place", "ns an element", "sort", [
            Row("dictionaries", "Sort/dictionaries/{set}/{key}", ours=True),
            Row("dictionaries, scattered in memory", "Sort/dictionaries_scattered/{set}/{key}", ours=True),
            Row("native objects", "Sort/objects/{set}/{key}", ours=True),
            Row("SQLite `ORDER BY`", "Sort/sqlite_order_by/{set}/{key}", peer="sqlite"),
            Row("`std::stable_sort` of `shared_ptr`", "Sort/stable_sort_of_shared_ptr/{set}/{key}", peer="libstdcxx"),
            Row("`std::stable_sort` of structs", "Sort/stable_sort_of_structs/{set}/{key}", peer="libstdcxx"),
        ], SORTED, field="ns_per_element", plot="sort"),
        Table("Inserting 100,000 into a sorted array, one after the other", "ns each", "sorted_insertion", [
            Row("dictionaries", "Insertion/dictionaries/{order}/{key}", ours=True),
            Row("native objects", "Insertion/objects/{order}/{key}", ours=True),
            Row("`std::vector` with `lower_bound`", "Insertion/vector_lower_bound/{order}/{key}", peer="libstdcxx"),
        ], INSERTED, field="ns_per_insertion"),
    ],
)
