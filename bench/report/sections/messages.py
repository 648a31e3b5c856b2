from model import Column, Program, Row, Section, Table

WAYS = [("run loop", "OwnRound", None), ("run loop hosted by GLib", "HostedByGlibRound", "glib"),
        ("run loop hosted by libuv", "HostedByLibuvRound", "libuv"), ("run loop hosted by Qt 6", "HostedByQtRound", "qt6"),
        ("libuv, queue under a lock and `uv_async_send`", "LibuvRound", "libuv"),
        ("`boost::asio::post`", "AsioRound", "asio"), ("Qt 6, queued `invokeMethod`", "QtRound", "qt6"),
        ("GLib, `g_main_context_invoke_full`", "GlibRound", "glib")]


def rows(wanted: list[float | None]) -> list[Row]:
    return [Row(label, f"{name}/{{s}}", peer=peer, ours="run loop" in label, wanted=wanted if place == 0 else None)
            for place, (label, name, peer) in enumerate(WAYS)]


def column(label: str, senders: int, field: str) -> Column:
    return Column(label, {"s": senders, "f": field})


SECTION = Section(
    key="messages",
    title="Messages between threads",
    programs=[Program("thread_messages", repetitions=5, min_time=0.1), Program("thread_wakeup", repetitions=3)],
    introduction="200,000 calls from one thread or four, to the library's own run loop, to the same hosted by other loops, "
    "and by the means of those loops themselves. Every way does equal work: a message holds its target by a counted "
    "reference and brings two numbers, and each is checked for order.",
    tables=[
        Table("A message to another thread", "ns by the clock, first sending to last arrival", "thread_messages",
              rows([60, None, None, None]),
              [column("1 sender", 1, "ns"), column("1, least", 1, "least_ns"), column("4 senders", 4, "ns"),
               column("4, least", 4, "least_ns")], field="{f}", plot="messages"),
        Table("The same by the processor", "ns a message", "thread_messages", rows([None] * 4),
              [column("1 sender: receiver", 1, "receiver_ns"), column("sender", 1, "sender_ns"),
               column("4 senders: receiver", 4, "receiver_ns"), column("senders", 4, "sender_ns")], field="{f}",
              plot="messages_processor"),
        Table("From sending until a sleeping loop performs a call", "µs by the clock", "thread_wakeup",
              [Row("run loop", "runLoop", ours=True), Row("bare `epoll_wait` and event descriptor", "eventDescriptor")],
              [Column("median", {"f": "median"}), Column("99th percentile", {"f": "p99"})], field="{f}", scale=1e-3,
              remark="Wanted are at most 1.2 times the bare pair's."),
    ],
)
