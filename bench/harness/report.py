"""The tables, as Markdown, and the same as JSON."""

from __future__ import annotations

import json
import os
import platform
import subprocess
import time
from pathlib import Path

from figures import Figure, Growth, Row

ROW_HEADING = ["Work", "Against", "At most", "Ratio", "Product", "Floor"]
ROW_WIDTHS = [44, 38, 7, 9, 29, 29]
GROWTH_WIDTHS = [44, 12]  # the work, every size
MISSING = "missing"


def number(value: float) -> str:
    return f"{value:.1f}" if value < 100 else f"{value:.0f}"


def ratio_text(row: Row) -> str:
    """With as many digits as it takes to see on which side of the wish it is; bold outside."""
    if row.ratio is None:
        return MISSING
    digits = next(
        (n for n in (2, 3, 4) if (round(row.ratio, n) <= row.at_most) == row.is_within), 5
    )
    text = f"{row.ratio:.{digits}f}"
    return text if row.is_within else f"**{text}**"


def with_spread(figure: Figure) -> str:
    """Median, and the least and the most of the rounds."""
    if figure.is_missing:
        return MISSING
    median = f"{number(figure.median)} {figure.unit}"
    if len(figure.values) == 1:
        return median
    return f"{median} ({number(figure.least)} to {number(figure.most)})"


def cells_of(line: Row | Growth) -> list[str]:
    if isinstance(line, Row):
        return [
            line.work,
            line.against,
            f"{line.at_most:g}",
            ratio_text(line),
            with_spread(line.product),
            with_spread(line.floor),
        ]
    return [line.work] + [MISSING if f.is_missing else number(f.median) for f in line.figures]


class Table:
    """Prints lines as they come, with a new heading wherever the kind of line changes."""

    def __init__(self) -> None:
        self.heading: list[str] = []
        self.widths: list[int] = []
        self.left = 0  # columns of texts
        self.work = ""  # of the line before

    def add(self, line: Row | Growth) -> None:
        heading = ROW_HEADING
        if isinstance(line, Growth):
            heading = [f"Cost by growth, {line.figures[0].unit}", *line.costs]
        if heading != self.heading:
            self.begin(heading)
        cells = cells_of(line)
        if line.work == self.work:
            cells[0] = "the same"
        self.work = line.work
        self.print(cells)

    def begin(self, heading: list[str]) -> None:
        self.heading = heading
        self.work = ""
        is_rows = heading == ROW_HEADING
        self.widths = (
            ROW_WIDTHS if is_rows else GROWTH_WIDTHS + GROWTH_WIDTHS[1:] * (len(heading) - 2)
        )
        self.left = 2 if is_rows else 1
        print()
        self.print(heading)
        rules = ["-" * (width + 2) for width in self.widths]
        print(
            "|"
            + "|".join(rules[: self.left] + [rule[1:] + ":" for rule in rules[self.left :]])
            + "|"
        )

    def print(self, cells: list[str]) -> None:
        padded = [
            cell.ljust(width) if column < self.left else cell.rjust(width)
            for column, (cell, width) in enumerate(zip(cells, self.widths))
        ]
        print("| " + " | ".join(padded) + " |", flush=True)


def figure_as_json(figure: Figure) -> dict:
    told = {"unit": figure.unit, "values": figure.values, "failures": figure.failures}
    if not figure.is_missing:
        told |= {"median": figure.median, "least": figure.least, "most": figure.most}
    return told


def line_as_json(line: Row | Growth) -> dict:
    if isinstance(line, Row):
        return {
            "work": line.work,
            "against": line.against,
            "at_most": line.at_most,
            "ratio": line.ratio,
            "within": line.is_within,
            "product": figure_as_json(line.product),
            "floor": figure_as_json(line.floor),
        }
    return {
        "work": line.work,
        "costs": {size: figure_as_json(figure) for size, figure in line.costs.items()},
    }


def output_of(*command: str) -> str:
    return subprocess.run(command, capture_output=True, text=True).stdout.strip()


def machine() -> dict:
    model = next(
        (
            line.split(":")[1].strip()
            for line in Path("/proc/cpuinfo").open()
            if line.startswith("model name")
        ),
        platform.machine(),
    )
    return {
        "date": time.strftime("%Y-%m-%d"),
        "commit": output_of("git", "describe", "--always", "--dirty"),
        "processor": model,
        "processors": os.cpu_count(),
        "kernel": platform.release(),
        "wine": output_of("wine", "--version"),
    }


def write_json(file: Path, lines: list[Row | Growth], rounds: int) -> None:
    told = {
        "machine": machine(),
        "rounds": rounds,
        "rows": [line_as_json(line) for line in lines if isinstance(line, Row)],
        "growth": [line_as_json(line) for line in lines if isinstance(line, Growth)],
    }
    file.write_text(json.dumps(told, indent=1, ensure_ascii=False) + "\n")
