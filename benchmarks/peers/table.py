"""The part of docs/benchmarks.md that compares us with public libraries."""

HEAD = """## Beside public libraries

Written by `{command}` on {date}.

Machine: {processor}. Compiler: {compiler}, Release (-O3).
Peers, each in one thread: {peers}.

All entries run in one process, in random order, on rows in the first caches. Ours goes through
the public classes, two row objects for each row; "as a plan" it is planned once and run on a row a
call; a peer goes through its public functions, of which the fastest counts. memcpy moves as many bytes as the job reads and writes, half of them each. The plain
loop is compiled with -O3 for the baseline of the processor's family. "Ours to peer" above 1.00 says
that ours is faster. A peer's name that ends in "self" merges a row with itself; one with a plus is
two calls through a row between them. Every entry has first been compared with a plain reference;
words in brackets after a peer say by which rule its values differ.

![Speed of the common jobs beside the fastest peer and memcpy](pictures/benchmarks.svg)

Ours is as fast as the fastest peer or faster in {ahead} of {compared} rows.
As a plan it is in {planned} of {compared_plans} rows.

Nanoseconds for a row, medians:

| job | pixels | ours | as a plan | fastest peer | its time | ours to peer | plain loop | memcpy | of memcpy |
|---|--:|--:|--:|---|--:|--:|--:|--:|--:|
"""


def number(value):
    """Three digits, as many as the measurement can bear."""
    if value >= 100:
        return f"{value:.0f}"
    return f"{value:.1f}" if value >= 10 else f"{value:.2f}"


def share(value):
    return f"{value:.2f}" if value >= 0.1 else f"{value:.3f}"


def line(title, row):
    peer = ("none", "-", "-")
    if row["peer"]:
        rule = f" ({row['peer_rule']})" if row["peer_rule"] else ""
        ratio = f"{row['times_as_fast_as_peer']:.2f}"
        peer = (f"{row['peer']}{rule}", number(row["peer_time"]), ratio)
    planned = number(row["planned"]) if row["planned"] else "-"
    cells = [title, str(row["pixels"]), number(row["ours"]), planned, *peer]
    cells += [number(row["plain"]), number(row["memcpy"]), share(row["share_of_memcpy"])]
    return "| " + " | ".join(cells) + " |\n"


def section(stored):
    rows = [(job["title"], row) for job in stored["jobs"].values() for row in job["rows"]]
    ratios = [row["times_as_fast_as_peer"] for _, row in rows if row["peer"]]
    ahead = sum(ratio >= 1 for ratio in ratios)
    plans = [row["peer_time"] / row["planned"] for _, row in rows if row["peer"] and row["planned"]]
    planned = sum(ratio >= 1 for ratio in plans)
    head = HEAD.format(
        ahead=ahead, compared=len(ratios), planned=planned, compared_plans=len(plans), **stored
    )
    return head + "".join(line(title, row) for title, row in rows)
