"""Samples taken in turns, the figures made of them, and the rows of the tables that they end in."""

from __future__ import annotations

import statistics
import subprocess
import sys
from collections.abc import Callable
from dataclasses import dataclass, field

Sample = dict[str, float]  # what one run gave, by name


class NotTaken(Exception):
    """Why a sample could not be taken."""


FAILURES = (NotTaken, OSError, ValueError, subprocess.SubprocessError)


@dataclass
class Figure:
    """One thing measured: a value a round. Where a round failed, all of it is missing."""

    unit: str
    values: list[float]
    failures: list[str] = field(default_factory=list)

    @property
    def is_missing(self) -> bool:
        return bool(self.failures) or not self.values

    @property
    def median(self) -> float:
        return statistics.median(self.values)

    @property
    def least(self) -> float:
        return min(self.values)

    @property
    def most(self) -> float:
        return max(self.values)


def fixed(value: float, unit: str) -> Figure:
    """What is compared with, where nothing is measured for it."""
    return Figure(unit, [value])


@dataclass
class Series:
    """The samples of one thing, a round each."""

    samples: list[Sample] = field(default_factory=list)
    failures: list[str] = field(default_factory=list)

    def figure(self, name: str, unit: str = "ms") -> Figure:
        return Figure(unit, [sample[name] for sample in self.samples], self.failures)


def show_progress(text: str) -> None:
    if sys.stderr.isatty():
        print(f"\r{text}\x1b[K", end="", file=sys.stderr, flush=True)


def take_in_turns(rounds: int, takers: dict[str, Callable[[], Sample]]) -> dict[str, Series]:
    """One sample of each a round, so that what slows the machine down slows all of them."""
    taken = {name: Series() for name in takers}
    for turn in range(1, rounds + 1):
        for name, take in takers.items():
            show_progress(f"  {turn} of {rounds}: {name}")
            try:
                taken[name].samples.append(take())
            except FAILURES as failure:
                taken[name].failures.append(f"{name}, round {turn}: {failure}")
    show_progress("")
    return taken


@dataclass
class Row:
    """The product against its floor, and the ratio of their medians that is wished for."""

    work: str
    against: str
    at_most: float
    product: Figure
    floor: Figure

    @property
    def figures(self) -> list[Figure]:
        return [self.product, self.floor]

    @property
    def ratio(self) -> float | None:
        if any(figure.is_missing for figure in self.figures):
            return None
        return self.product.median / self.floor.median

    @property
    def is_within(self) -> bool | None:
        return None if self.ratio is None else self.ratio <= self.at_most


@dataclass
class Growth:
    """What the same work costs at several sizes."""

    work: str
    costs: dict[str, Figure]  # by size

    @property
    def figures(self) -> list[Figure]:
        return list(self.costs.values())


def growth_of(figure: Figure, start: Figure) -> Figure:
    """How many times the cost at the start, round by round."""
    values = [more / less for more, less in zip(figure.values, start.values)]
    return Figure("×", values, figure.failures + start.failures)
