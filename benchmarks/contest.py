"""Runs contestants in interleaved pairs and takes the median of the pairs' ratios."""

import dataclasses
import json
import os
import resource
import statistics
import subprocess
import typing


@dataclasses.dataclass
class Command:
    """A program whose last line of output is JSON, or whose processor time is measured.

    prepare: called before each run, outside what is measured.
    figure: the name of the figure in the JSON; "process" for the program's own user and system time.
    """

    words: list
    figure: str = "seconds"
    prepare: typing.Optional[typing.Callable] = None
    others: typing.Optional[typing.Callable] = None  # processor time spent on the work by other processes so far

    def __call__(self):
        if self.prepare:
            self.prepare()
        spent_by_others = self.others() if self.others else 0.0
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        done = subprocess.run(self.words, check=False, capture_output=True, text=True)
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        if done.returncode != 0:
            raise SystemExit(f"./bench: {' '.join(self.words)} failed:\n{done.stdout}{done.stderr}")
        if self.others:
            spent_by_others = self.others() - spent_by_others
        if self.figure == "process":
            return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime + spent_by_others
        return json.loads(done.stdout.strip().splitlines()[-1])[self.figure] + spent_by_others


@dataclasses.dataclass
class Row:
    """One line of the table.

    peer: the contestant that ours is compared with; without one, ours is compared with the goal.
    faster: the goal is a least speed-up (peer / ours) rather than a most ratio (ours / peer).
    work: how many times as much work ours has than the peer, for rows about growth.
    """

    name: str
    what: str
    ours: typing.Callable
    goal: float
    peer: typing.Optional[typing.Callable] = None
    against: str = ""
    unit: str = "s"
    faster: bool = False
    work: float = 1.0

    def goal_text(self):
        if self.faster:
            return f">= {self.goal:g} x faster"
        if self.peer is None:
            return "0" if self.goal == 0 else f"<= {self.goal:.4g} {self.unit}"
        return f"<= {self.goal:g}"


@dataclasses.dataclass
class Outcome:
    ours: float
    theirs: typing.Optional[float]
    ratio: float
    low: float
    high: float
    met: bool
    pairs: int


def ratio_of(row, ours, theirs):
    if theirs is None:
        return ours
    ours = ours / row.work
    return theirs / ours if row.faster else ours / theirs


def measure(row, pairs, _folder):
    """Runs the pairs in alternating order, so that neither side profits from its place."""
    ours, theirs, ratios = [], [], []
    for pair in range(pairs):
        order = [("ours", row.ours), ("theirs", row.peer)]
        if pair % 2:
            order.reverse()
        values = {who: work() if work else None for who, work in order}
        ours.append(values["ours"])
        theirs.append(values["theirs"])
        ratios.append(ratio_of(row, values["ours"], values["theirs"]))
    ratio = statistics.median(ratios)
    met = ratio >= row.goal if row.faster else ratio <= row.goal
    return Outcome(statistics.median(ours), statistics.median(theirs) if row.peer else None, ratio, min(ratios),
                   max(ratios), met, pairs)
