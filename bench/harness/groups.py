"""The rows of the tables, in groups that can be measured alone."""

from __future__ import annotations

import subprocess
import time
from collections.abc import Callable, Iterator
from dataclasses import dataclass

import tool
from figures import Growth, NotTaken, Row, Sample, Series, fixed, growth_of, take_in_turns
from machine import FOLDER, LINUX, ROOT, WINDOWS, System, milliseconds, poll, run
from updates import (
    APP,
    LASTING,
    LINE_FILE,
    LINE_ROWS,
    MEGABYTE,
    ROW_SIZE,
    SIGNED,
    TITLE,
    Programs,
    Servers,
    file_sample,
    rows_sample,
    trusting_the_authority,
)

LARGEST_PROGRAM = 300  # KB
LONGEST_WAIT = fixed(100, "ms")  # that nobody feels
MOST_LINE_ROUNDS = 3  # each takes a minute, and hardly differs


@dataclass(frozen=True)
class Bench:
    rounds: int
    systems: list[System]
    servers: Servers

    def programs(self, *systems: System) -> list[Programs]:
        """Of the systems that are measured; of all of them unless some are named."""
        return [
            Programs(system, self.servers)
            for system in self.systems
            if system in (systems or self.systems)
        ]

    def take(self, **takers: Callable[[], Sample]) -> dict[str, Series]:
        return take_in_turns(self.rounds, takers)


# --- One large file.


def updates_file(programs: Programs, size: int) -> Sample:
    programs.update(f"file-{size}")
    return file_sample(size)


def floor_fetches_file(programs: Programs, size: int, read_size: int) -> Sample:
    programs.floor("file", *programs.servers.near.arguments, f"/{size}", read_size)
    return file_sample(size)


def curl_fetches_file(programs: Programs, size: int) -> Sample:
    programs.prepare()
    run(["curl", "-s", "-o", "file", f"{programs.servers.near.url}/{size}"], APP)
    return file_sample(size)


def file(bench: Bench) -> Iterator[Row]:
    for windows in bench.programs(WINDOWS):
        taken = bench.take(
            product=lambda: updates_file(windows, 100),
            small_reads=lambda: floor_fetches_file(windows, 100, 1024),
            large_reads=lambda: floor_fetches_file(windows, 100, 65536),
        )
        product = taken["product"].figure("time")
        yield Row(
            "Windows, 100 MB in one ADD",
            "WinINet, reads of 1 KiB, no window",
            0.2,
            product,
            taken["small_reads"].figure("time"),
        )
        yield Row(
            "Windows, 100 MB in one ADD",
            "WinINet, reads of 64 KiB, no window",
            1.5,
            product,
            taken["large_reads"].figure("time"),
        )
    for linux in bench.programs(LINUX):
        taken = bench.take(
            product=lambda: updates_file(linux, 500), curl=lambda: curl_fetches_file(linux, 500)
        )
        yield Row(
            "Linux, 500 MB in one ADD",
            "curl -o",
            1.4,
            taken["product"].figure("time"),
            taken["curl"].figure("time"),
        )


def updates_signed_file(programs: Programs) -> Sample:
    programs.update(f"signed-{SIGNED}")
    return file_sample(SIGNED)


def signed(bench: Bench) -> Iterator[Row]:
    for programs in bench.programs():
        taken = bench.take(
            product=lambda programs=programs: updates_signed_file(programs),
            unsigned=lambda programs=programs: updates_file(programs, SIGNED),
        )
        yield Row(
            f"{programs.system.title}, {SIGNED} MB in one ADD, signed",
            "the same unsigned",
            1.3,
            taken["product"].figure("time"),
            taken["unsigned"].figure("time"),
        )


# --- Small files.


def updates_rows(programs: Programs, count: int) -> Sample:
    return rows_sample("row", [ROW_SIZE] * count, lambda: programs.update(f"rows-{count}"))


def floor_updates_rows(programs: Programs, count: int) -> Sample:
    return rows_sample(
        "row",
        [ROW_SIZE] * count,
        lambda: programs.floor("rows", *programs.servers.near.arguments, "/row", count),
    )


def rows(bench: Bench) -> Iterator[Row]:
    for programs in bench.programs():
        system = programs.system
        taken = bench.take(
            product=lambda: updates_rows(programs, 1000),
            floor=lambda: floor_updates_rows(programs, 1000),
        )
        parts = (
            ("probes", f"{system.http_library}, the same HEADs", 1.1),
            ("download", f"{system.http_library}, the same GETs to files", 1.3),
            ("install", "the same renames", 1.5),
        )
        for part, against, at_most in parts:
            yield Row(
                f"{system.title}, 1,000 ADD rows of 4 KiB: {part}",
                against,
                at_most,
                taken["product"].figure(part),
                taken["floor"].figure(part),
            )


FAR_SIZES = [ROW_SIZE] * LINE_ROWS + [LINE_FILE]


def updates_over_line(programs: Programs) -> Sample:
    with trusting_the_authority(programs.system):
        return rows_sample("far", FAR_SIZES, lambda: programs.update("far"))


def floor_updates_over_line(programs: Programs) -> Sample:
    arguments = (*programs.servers.far.arguments, "/far", len(FAR_SIZES))
    with trusting_the_authority(programs.system):
        return rows_sample("far", FAR_SIZES, lambda: programs.floor("rows", *arguments))


def line(bench: Bench) -> Iterator[Row]:
    for programs in bench.programs():
        taken = take_in_turns(
            min(bench.rounds, MOST_LINE_ROUNDS),
            {
                "product": lambda: updates_over_line(programs),
                "floor": lambda: floor_updates_over_line(programs),
            },
        )
        yield Row(
            f"{programs.system.title}, 100 × 4 KiB and 20 MB over a line",
            f"{programs.system.http_library}, the same requests",
            1.05,
            taken["product"].figure("all"),
            taken["floor"].figure("all"),
        )


# --- The script, read in a process of its own by the program's procedures.


def script(bench: Bench) -> Iterator[Row]:
    for programs in bench.programs():
        taken = bench.take(
            product=lambda: programs.time_told_by("script_reading", "product", 1_000_000),
            getline=lambda: programs.time_told_by("script_reading", "floor", 1_000_000),
            tenth=lambda: programs.time_told_by("script_reading", "product", 100_000),
        )
        work = f"{programs.system.title}, script of 1,000,000 lines"
        product = taken["product"].figure("time")
        yield Row(
            work, "std::getline, cuts at the bar", 1.5, product, taken["getline"].figure("time")
        )
        yield Row(work, "the program, 100,000 lines", 11, product, taken["tenth"].figure("time"))


# --- The start, as another Windows program sees it.


def start_of(programs: Programs, window_class: str, command: str) -> Sample:
    return programs.time_told_by("start_to_window", window_class, command)


def start(bench: Bench) -> Iterator[Row]:
    for windows in bench.programs(WINDOWS):
        program = f"Kestrane.exe 1.0.0 any {windows.servers.near.url}/slow.txt none NO {TITLE}"
        floors = str(windows.system.programs / "bench").replace("/", "\\")
        taken = bench.take(
            product=lambda: start_of(windows, "KestraneWindow", program),
            empty=lambda: start_of(windows, "EmptyWindow", f"Z:{floors}\\empty_window.exe"),
            styled=lambda: start_of(windows, "EmptyWindow", f"Z:{floors}\\styled_window.exe"),
        )
        product = taken["product"].figure("time")
        yield Row(
            "Windows, start to window",
            "an empty window",
            1.15,
            product,
            taken["empty"].figure("time"),
        )
        yield Row(
            "Windows, start to window",
            "one with the system's visual styles",
            1.15,
            product,
            taken["styled"].figure("time"),
        )


# --- Memory and size of the program.


def peak_memory(programs: Programs, size: int) -> Sample:
    programs.prepare()
    peak = FOLDER / "peak"
    run(
        ["/usr/bin/time", "-f", "%M", "-o", peak, *programs.kestrane(f"file-{size}")],
        APP,
        programs.environment,
    )
    return {"peak": float(peak.read_text())}


def memory(bench: Bench) -> Iterator[Row]:
    for programs in bench.programs():
        taken = bench.take(
            large=lambda: peak_memory(programs, 500), small=lambda: peak_memory(programs, 5)
        )
        yield Row(
            f"{programs.system.title}, peak memory for 500 MB",
            "the same for 5 MB",
            1.02,
            taken["large"].figure("peak", "KB"),
            taken["small"].figure("peak", "KB"),
        )


def size(bench: Bench) -> Iterator[Row]:
    for windows in bench.programs(WINDOWS):
        bytes_in_file = (windows.system.programs / "Kestrane.exe").stat().st_size
        yield Row(
            "Windows, size of the program",
            f"{LARGEST_PROGRAM} KB",
            1,
            fixed(bytes_in_file / 1024, "KB"),
            fixed(LARGEST_PROGRAM, "KB"),
        )


# --- The window while a download runs.


def windows_shown() -> list[str]:
    """Those with the program's title: its own, and that of its question."""
    found = subprocess.run(
        ["xdotool", "search", "--onlyvisible", "--name", f"^{TITLE}$"],
        capture_output=True,
        text=True,
    )
    return found.stdout.split()


def is_unfinished(size: int) -> bool:
    try:
        return (APP / "file.tmp").stat().st_size < size * MEGABYTE
    except FileNotFoundError:
        return False


def time_to_question(programs: Programs, script: str, size: int) -> Sample:
    """From the press of the button to the question, at which the download stands still."""
    with programs.download(script):
        if not poll(10, lambda: len(windows_shown()) == 1):
            raise NotTaken("there is no window")
        subprocess.run(["xdotool", "windowfocus", *windows_shown()], check=True)
        time.sleep(0.5)  # for the start to be over
        if not is_unfinished(size):
            raise NotTaken("the download was over before the click")
        pressed = time.perf_counter()
        subprocess.run(["xdotool", "key", "Return"], check=True)
        asked = poll(10, lambda: len(windows_shown()) > 1)
        shown = time.perf_counter()
        if not is_unfinished(size):
            raise NotTaken("the download was over before the question")
        if not asked:
            raise NotTaken("no question within 10 s")
        return {"time": milliseconds(pressed, shown)}


def cancel(bench: Bench) -> Iterator[Row]:
    for programs in bench.programs():
        taken = bench.take(
            slow=lambda: time_to_question(programs, "slow", 500),
            fast=lambda: time_to_question(programs, f"file-{LASTING}", LASTING),
        )
        work = f'{programs.system.title}, "Cancelar" to question'
        yield Row(f"{work}, 1 KB/s", "100 ms", 1, taken["slow"].figure("time"), LONGEST_WAIT)
        yield Row(f"{work}, full speed", "100 ms", 1, taken["fast"].figure("time"), LONGEST_WAIT)


def longest_standstill(programs: Programs) -> Sample:
    with programs.download("steady"):
        time.sleep(1)  # for the start to be over
        return {"time": float(run([ROOT / "build/linux/bench/standstill", TITLE, 3], APP))}


def smooth(bench: Bench) -> Iterator[Row]:
    for programs in bench.programs():
        taken = bench.take(product=lambda: longest_standstill(programs))
        yield Row(
            f"{programs.system.title}, longest standstill at 2 MB/s",
            "100 ms",
            1,
            taken["product"].figure("time"),
            LONGEST_WAIT,
        )


def processor_use(programs: Programs) -> Sample:
    """Per cent of a processor that the program and, with Wine, its server use."""
    seconds = 10
    with programs.download("slow"):
        time.sleep(1)  # for the start to be over
        before = programs.system.processor_seconds()
        time.sleep(seconds)
        used = programs.system.processor_seconds() - before
        return {"used": 100 * used / seconds}


def waiting(bench: Bench) -> Iterator[Row]:
    for programs in bench.programs():
        taken = bench.take(product=lambda: processor_use(programs))
        yield Row(
            f"{programs.system.title}, processor time at 1 KB/s",
            "one processor",
            0.01,
            taken["product"].figure("used", "%"),
            fixed(100, "%"),
        )


# --- The tool for publishers.


def publish(bench: Bench) -> Iterator[Growth | Row]:
    if LINUX in bench.systems:
        yield from tool.measure(bench.rounds)


# --- Cost by growth.


def grown(bench: Bench, work: str, steps: tuple[int, ...], take: Callable[[int], Sample]) -> Growth:
    taken = bench.take(**{str(step): lambda step=step: take(step) for step in steps})
    return Growth(work, {f"{step // steps[0]}×": taken[str(step)].figure("time") for step in steps})


def growth_of_rows(bench: Bench, programs: Programs) -> Iterator[Growth | Row]:
    """Beside that of the floor, which grows as well."""
    steps = (5, 50, 500)
    takers = {"product": updates_rows, "floor": floor_updates_rows}
    taken = bench.take(
        **{
            f"{name} {step}": lambda take=take, step=step: take(programs, step)
            for step in steps
            for name, take in takers.items()
        }
    )
    costs = {name: [taken[f"{name} {step}"].figure("all") for step in steps] for name in takers}
    work = f"{programs.system.title}, rows (5 of 4 KiB)"
    for name, label in (("product", work), ("floor", f"{work}, the floor")):
        yield Growth(
            label, {f"{step // steps[0]}×": cost for step, cost in zip(steps, costs[name])}
        )
    factors = {name: growth_of(figures[-1], figures[0]) for name, figures in costs.items()}
    yield Row(
        f"{programs.system.title}, cost of 500 rows against 5",
        "the same of the floor",
        1.1,
        factors["product"],
        factors["floor"],
    )


def growth(bench: Bench) -> Iterator[Growth | Row]:
    for programs in bench.programs():
        title = programs.system.title
        yield grown(
            bench, f"{title}, bytes (10 MB)", (10, 100, 1000), lambda mb: updates_file(programs, mb)
        )
        yield grown(
            bench,
            f"{title}, lines (10,000)",
            (10_000, 100_000, 1_000_000),
            lambda lines: programs.time_told_by("script_reading", "product", lines),
        )
        yield grown(
            bench,
            f"{title}, bars drawn (1,000)",
            (1_000, 10_000, 100_000),
            lambda bars: programs.time_told_by("bars", bars),
        )
        yield from growth_of_rows(bench, programs)


GROUPS = {
    "file": file,
    "signed": signed,
    "rows": rows,
    "line": line,
    "script": script,
    "start": start,
    "memory": memory,
    "size": size,
    "cancel": cancel,
    "smooth": smooth,
    "waiting": waiting,
    "publish": publish,
    "growth": growth,
}
