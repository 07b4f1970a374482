"""Rows of the tool for publishers, at size."""

from __future__ import annotations

import os
import shutil
from collections.abc import Iterator
from pathlib import Path

from figures import Growth, Row, Sample, take_in_turns
from machine import FOLDER, LINUX, run
from machine import time_of as time_of_command

TOOL = LINUX.programs / "kestrane-publish"
READING = LINUX.programs / "bench/script_reading.exe"
PLACE = FOLDER / "tool"
URL = "https://updates.invalid/ledger"
FEW_OR_NO_WARNINGS = (0, 1)  # exit status

BLOCKS = (100, 200, 400, 800)
ROWS_IN_BLOCK = 40
MANY_LINES = 1_000_000
FILES = 5_000
FILE_SIZE = 200_000  # 1 GB in all


def version_of(release: int) -> str:
    return f"{release // 1000 + 1}.{release % 1000}.0"


def write_blocks(count: int) -> Path:
    """A script with so many releases behind it."""
    lines = [f"1.0.0|{URL}/Kestrane.exe", "NAME|Ledger"]
    for release in range(1, count + 1):
        version = version_of(release)
        lines.append(f"VERSION|<|{version}")
        lines += [
            f"UPDATE|$AppPath\\part{row}.dll|{URL}/{version}/part{row}.dll"
            for row in range(ROWS_IN_BLOCK)
        ]
        lines.append("END")
    script = PLACE / f"{count}.txt"
    script.write_text("\n".join(lines) + "\n")
    return script


def time_of(*command: object) -> Sample:
    return time_of_command(list(command), PLACE, FEW_OR_NO_WARNINGS)


def blocks(rounds: int, *command: str) -> Iterator[Growth | Row]:
    scripts = {count: write_blocks(count) for count in BLOCKS}
    name, *options = command
    taken = take_in_turns(
        rounds,
        {
            str(count): lambda script=script: time_of(TOOL, name, script, *options)
            for count, script in scripts.items()
        },
    )
    costs = {count: series.figure("time") for count, series in taken.items()}
    yield Growth(f"{' '.join(command)}, blocks of {ROWS_IN_BLOCK} rows", costs)
    most, fewest = str(BLOCKS[-1]), str(BLOCKS[0])
    yield Row(
        f"{' '.join(command)}, {most} blocks",
        f"{fewest} blocks",
        BLOCKS[-1] / BLOCKS[0] * 1.1,
        costs[most],
        costs[fewest],
    )


def many_lines(rounds: int) -> Iterator[Row]:
    script = write_blocks(MANY_LINES // (ROWS_IN_BLOCK + 2))
    taken = take_in_turns(
        rounds,
        {
            "check": lambda: time_of(TOOL, "check", script),
            "program": lambda: {"time": float(run([READING, "file", script], PLACE))},
        },
    )
    yield Row(
        "check, script of 1,000,000 lines",
        "the program reads them",
        3,
        taken["check"].figure("time"),
        taken["program"].figure("time"),
    )


def make() -> Sample:
    return time_of(
        TOOL,
        "make",
        "old",
        "new",
        "--url",
        URL,
        "--from",
        "1.0.0",
        "--to",
        "2.0.0",
        "--name",
        "Ledger",
        "--updater",
        f"{URL}/Kestrane.exe",
        "1.0.0",
        "--site",
        "site",
    )


def make_anew() -> Sample:
    shutil.rmtree(PLACE / "site", ignore_errors=True)
    return make()


def copy() -> Sample:
    shutil.rmtree(PLACE / "copy", ignore_errors=True)
    return time_of("cp", "-r", "new", "copy")


def compare() -> Sample:
    return time_of("diff", "-rq", "new", "copy")


def releases(rounds: int) -> Iterator[Row]:
    for name in ("old", "new"):
        (PLACE / name).mkdir()
    for file in range(FILES):
        (PLACE / "new" / f"part{file}.dat").write_bytes(os.urandom(FILE_SIZE))
    taken = take_in_turns(
        rounds, {"make": make_anew, "cp": copy, "make again": make, "diff": compare}
    )
    yield Row(
        "make, 5,000 files and 1 GB",
        "cp -r",
        1.3,
        taken["make"].figure("time"),
        taken["cp"].figure("time"),
    )
    yield Row(
        "make, 5,000 files and 1 GB, once more",
        "diff -rq",
        1,
        taken["make again"].figure("time"),
        taken["diff"].figure("time"),
    )


def measure(rounds: int) -> Iterator[Growth | Row]:
    PLACE.mkdir()
    yield from blocks(rounds, "check")
    yield from blocks(rounds, "simulate", "--matrix")
    yield from many_lines(rounds)
    yield from releases(rounds)
    shutil.rmtree(PLACE)
