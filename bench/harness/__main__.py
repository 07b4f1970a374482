"""The command line of scripts/bench."""

from __future__ import annotations

import argparse
import os
import shutil
import signal
import subprocess
import sys
from pathlib import Path

import plot
from figures import Growth, NotTaken, Row
from groups import GROUPS, Bench
from machine import FOLDER, LINUX, OUTPUT, ROOT, WINDOWS, session, virtual_display
from report import Table, write_json
from updates import make_certificates, web_server


def parse_arguments() -> argparse.Namespace:
    parser = argparse.ArgumentParser(
        prog="bench",
        formatter_class=argparse.RawDescriptionHelpFormatter,
        description="Measures the programs against floors, small ones that make the same calls of\n"
        "the system and nothing else, in turns, and prints medians, their spread and their\n"
        "ratios, in bold where they are not what is wished for. Needs a virtual display and a web\n"
        "server on this machine; what it leaves is in build/bench.",
        epilog="Exit status: 0, or 1 when a figure could not be taken.",
    )
    parser.add_argument(
        "groups", nargs="*", metavar="ROW", help="rows to measure: " + ", ".join(GROUPS)
    )
    which = parser.add_mutually_exclusive_group()
    which.add_argument(
        "--windows", action="store_const", dest="system", const=WINDOWS, help="this system alone"
    )
    which.add_argument(
        "--linux", action="store_const", dest="system", const=LINUX, help="this system alone"
    )
    parser.add_argument("--rounds", type=int, default=5, help="default: 5")
    parser.add_argument(
        "--json", type=Path, metavar="FILE", help="also write every value that was taken"
    )
    parser.add_argument(
        "--plot",
        type=Path,
        metavar="FILE",
        help="measure nothing; print the rows of such a file as an SVG picture",
    )
    arguments = parser.parse_args()
    if unknown := [name for name in arguments.groups if name not in GROUPS]:
        parser.error(f'there is no row "{unknown[0]}"')
    if arguments.rounds < 1:
        parser.error("there has to be a round")
    return arguments


def build(systems: list) -> None:
    steps = [["scripts/setup"]]
    for system in [LINUX, *systems]:  # the standstill is seen by a program of Linux
        steps += [["cmake", "--preset", system.name], ["cmake", "--build", "--preset", system.name]]
    for step in steps:
        if subprocess.run(step, cwd=ROOT, stdout=sys.stderr).returncode != 0:
            sys.exit(f"bench: {' '.join(step)} failed")


def measure(names: list[str], systems: list, rounds: int) -> list[Row | Growth]:
    lines: list[Row | Growth] = []
    table = Table()
    with web_server() as servers, virtual_display(), session(systems):
        bench = Bench(rounds, systems, servers)
        for name in names:
            for line in GROUPS[name](bench):
                table.add(line)
                lines.append(line)
    return lines


def tell_of(lines: list[Row | Growth]) -> int:
    """What could not be taken; the exit status."""
    outside = sum(1 for line in lines if isinstance(line, Row) and line.is_within is False)
    print(f"\n{outside} rows outside the wish, in bold.")
    failures = {
        f"missing: {line.work}: {failure}": None  # once, though several rows lack it
        for line in lines
        for figure in line.figures
        for failure in figure.failures
    }
    for failure in failures:
        print(failure)
    return 1 if failures else 0


def main() -> int:
    arguments = parse_arguments()
    if arguments.plot:
        print(plot.picture_of(arguments.plot))
        return 0
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # what was started is ended
    systems = [arguments.system] if arguments.system else [WINDOWS, LINUX]
    build(systems)
    shutil.rmtree(FOLDER, ignore_errors=True)
    FOLDER.mkdir(parents=True)
    OUTPUT.touch()
    os.environ["no_proxy"] = "localhost,127.0.0.1"
    if WINDOWS in systems:
        subprocess.run(["wineserver", "-w"])  # one without the mark
    try:
        make_certificates()
        lines = measure(arguments.groups or list(GROUPS), systems, arguments.rounds)
    except NotTaken as failure:
        sys.exit(f"bench: {failure}")
    if arguments.json:
        write_json(arguments.json, lines, arguments.rounds)
    return tell_of(lines)


sys.exit(main())
