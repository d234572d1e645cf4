"""Measures Corvane's performance-critical operations against peers and limits, in interleaved pairs, and prints one table.

./bench starts it after building; benchmarks/README.md describes the output.
"""

import argparse
import datetime
import json
import os
import shutil
import signal
import sys
import tempfile

from contest import measure
from rows import all_rows

TOP = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def arguments():
    parser = argparse.ArgumentParser(prog="./bench", description="Measures against peers and limits.")
    parser.add_argument("--quick", action="store_true", help="small sizes and few pairs; judges nothing")
    parser.add_argument("--pairs", type=int, help="how many pairs a row has (5; with --quick 1)")
    parser.add_argument("names", nargs="*", metavar="NAME", help="rows by name, or the start of their names")
    return parser.parse_args()


def chosen(rows, names):
    picked = [row for row in rows if not names or any(row.name.startswith(name) for name in names)]
    if not picked:
        sys.exit("./bench: no such row; there are: " + " ".join(row.name for row in rows))
    return picked


def figure(value, unit):
    """A value with its unit, in three digits."""
    if value is None:
        return ""
    for factor, prefix in ((1e9, "G"), (1e6, "M"), (1e3, "k"), (1, ""), (1e-3, "m"), (1e-6, "u")):
        if abs(value) >= factor:
            return f"{value / factor:.3g} {prefix}{unit}".rstrip()
    return f"{value:.3g} {unit}".rstrip()


def line(row, outcome, quick):
    if row.peer is None:
        ratio, spread = figure(outcome.ratio, row.unit), (figure(outcome.low, row.unit), figure(outcome.high, row.unit))
    else:
        ratio = f"{outcome.ratio:.3g}"
        spread = (f"{outcome.low:.3g}", f"{outcome.high:.3g}")
    verdict = "not judged" if quick else "met" if outcome.met else "NOT MET"
    peer = f"{row.against} {figure(outcome.theirs, row.unit)}".strip()
    return [row.name, row.what, figure(outcome.ours, row.unit), peer, f"{ratio} ({spread[0]}..{spread[1]})",
            row.goal_text(), verdict]


HEADINGS = ["name", "what", "ours", "peer or limit", "ratio or value (spread)", "goal", "met"]
WIDTHS = [18, 50, 9, 36, 28, 16, 10]


def show(cells):
    print("| " + " | ".join(str(cell).ljust(width) for cell, width in zip(cells, WIDTHS)) + " |", flush=True)


def run(rows, options, folder):
    show(HEADINGS)
    show(["-" * width for width in WIDTHS])
    pairs = options.pairs or (1 if options.quick else 5)
    results = []
    for row in rows:
        outcome = measure(row, pairs, folder)
        show(line(row, outcome, options.quick))
        results.append({"name": row.name, "what": row.what, "against": row.against, "unit": row.unit,
                        "goal": row.goal_text(), "judged": not options.quick, **outcome.__dict__})
    return results


def main():
    # When ended by a signal, remove the folder and stop the server, as after a failure.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("./bench: ended by a signal"))
    options = arguments()
    folder = tempfile.mkdtemp(prefix="corvane-bench-")
    try:
        rows = chosen(all_rows(TOP, folder, options.quick), options.names)
        results = run(rows, options, folder)
    finally:
        shutil.rmtree(folder)
    with open(os.path.join(TOP, "build", "bench.json"), "w", encoding="utf-8") as file:
        json.dump({"date": datetime.date.today().isoformat(), "quick": options.quick, "rows": results}, file, indent=1)
    missed = [row["name"] for row in results if row["judged"] and not row["met"]]
    if not options.quick:
        print(f"\n{len(results) - len(missed)} of {len(results)} rows met.")
    sys.exit(1 if missed else 0)


if __name__ == "__main__":
    main()
