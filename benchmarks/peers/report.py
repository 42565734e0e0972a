"""What scripts/bench.sh makes of the reports of bench_peers.

   report.py store COMMAND RUN.json...   prints the figures to store; COMMAND made them
   report.py table STORED.json           prints the part of the page
   report.py chart STORED.json           prints the picture
   report.py check STORED.json RUN.json...
       names each loss on which all runs agree; exits 1 if there is one, 2 on wrong use
"""

import json
import sys

import chart
import figures
import table


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def check(stored, reports):
    """Says what has been lost and returns the exit code."""
    here = reports[0].context["processor"]
    if here != stored["processor"]:
        print(
            f"the stored figures come from another processor: {stored['processor']}, not {here}"
        )
    losses = figures.find_losses(stored, reports)
    for loss in losses:
        print(f"loss: {loss}")
    if not losses:
        print(f"no loss above {figures.LARGEST_LOSS:.0%} on which {len(reports)} runs agree")
    return 1 if losses else 0


def main(arguments):
    verb, rest = arguments[:1], arguments[1:]
    if verb == ["store"] and len(rest) > 1:
        report = figures.Report(map(read, rest[1:]))
        print(figures.text_to_store(figures.figures_to_store(report, rest[0])), end="")
    elif verb == ["table"] and len(rest) == 1:
        print(table.section(json.loads(read(rest[0]))), end="")
    elif verb == ["chart"] and len(rest) == 1:
        print(chart.picture(json.loads(read(rest[0]))), end="")
    elif verb == ["check"] and len(rest) > 1:
        reports = [figures.Report([read(path)]) for path in rest[1:]]
        return check(json.loads(read(rest[0])), reports)
    else:
        print(__doc__, file=sys.stderr)
        return 2
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
