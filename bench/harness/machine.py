"""The machine that is measured on: programs of both systems, and what has to run beside them."""

from __future__ import annotations

import os
import socket
import subprocess
import sys
import time
from collections.abc import Callable, Iterator
from contextlib import contextmanager
from dataclasses import dataclass
from pathlib import Path

from figures import NotTaken

ROOT = Path(__file__).resolve().parents[2]
FOLDER = ROOT / "build/bench"  # all that this leaves
OUTPUT = FOLDER / "output.log"  # of the programs
LONGEST_RUN = 300  # seconds


@dataclass(frozen=True)
class System:
    name: str
    http_library: str
    launcher: tuple[str, ...] = ()

    @property
    def title(self) -> str:
        return self.name.capitalize()

    @property
    def programs(self) -> Path:
        return ROOT / "build" / self.name

    @property
    def environment(self) -> dict[str, str]:
        """With a mark, which Wine's server gets too."""
        return os.environ | {"BENCHED": self.name}

    def processor_seconds(self) -> float:
        """Of all processes with the mark, so far."""
        mark = f"BENCHED={self.name}".encode()
        ticks = 0
        for process in Path("/proc").glob("[0-9]*"):
            try:
                if mark not in (process / "environ").read_bytes().split(b"\0"):
                    continue
                fields = (process / "stat").read_text().rpartition(")")[2].split()
                ticks += int(fields[11]) + int(fields[12])
            except OSError:
                continue  # it has ended, or is another user's
        return ticks / os.sysconf("SC_CLK_TCK")


WINDOWS = System("windows", "WinINet", ("wine",))
LINUX = System("linux", "libcurl")


def poll(seconds: float, condition: Callable[[], bool], pause: float = 0.005) -> bool:
    """Whether the condition came to hold in time."""
    deadline = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > deadline:
            return False
        time.sleep(pause)
    return True


def milliseconds(start: float, end: float) -> float:
    return 1000 * (end - start)


def run(
    command: list,
    cwd: Path,
    environment: dict[str, str] | None = None,
    good: tuple[int, ...] = (0,),
) -> str:
    """What the command prints; what it says beside that goes to the log."""
    with OUTPUT.open("a") as log:
        try:
            done = subprocess.run(
                [str(word) for word in command],
                cwd=cwd,
                env=environment,
                stderr=log,
                stdin=subprocess.DEVNULL,
                stdout=subprocess.PIPE,
                text=True,
                errors="replace",
                timeout=LONGEST_RUN,
            )
        except subprocess.TimeoutExpired:
            raise NotTaken(f"not over within {LONGEST_RUN} s")
    if done.returncode not in good:
        raise NotTaken(f"exit status {done.returncode} of {Path(command[0]).name}; see {OUTPUT}")
    return done.stdout


def time_of(command: list, cwd: Path, good: tuple[int, ...] = (0,)) -> dict[str, float]:
    """A sample."""
    os.sync()
    start = time.perf_counter()
    run(command, cwd, good=good)
    return {"time": milliseconds(start, time.perf_counter())}


@contextmanager
def running(command: list, **options) -> Iterator[subprocess.Popen]:
    """A program that is ended, if it has not ended by itself, with the block."""
    with OUTPUT.open("a") as log:
        process = subprocess.Popen(
            [str(word) for word in command],
            stdin=subprocess.DEVNULL,
            stdout=log,
            stderr=log,
            **options,
        )
        try:
            yield process
        finally:
            process.terminate()
            try:
                process.wait(10)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()


@contextmanager
def session(systems: list[System]) -> Iterator[None]:
    """Somebody who works with Windows has one; Wine ends its own three seconds after the last
    program, and begins another beside the next one, which is slower then."""
    if WINDOWS not in systems:
        yield
        return
    program = WINDOWS.programs / "bench/session.exe"
    with running([*WINDOWS.launcher, program], env=WINDOWS.environment):
        time.sleep(3)  # for its services to be up
        yield


def port_is_taken(port: int) -> bool:
    with socket.socket() as probe:
        return probe.connect_ex(("127.0.0.1", port)) == 0


def free_ports(count: int) -> list[int]:
    """The updater takes none above 32767."""
    return [port for port in range(18080, 18180) if not port_is_taken(port)][:count]


@contextmanager
def serving(command: list, port: int) -> Iterator[None]:
    with running(command) as server:
        poll(5, lambda: port_is_taken(port) or server.poll() is not None)
        if server.poll() is not None or not port_is_taken(port):
            sys.exit(f"bench: {Path(command[0]).name} did not start; see {OUTPUT}")
        yield


@contextmanager
def line_to(port: int, line_port: int) -> Iterator[None]:
    """The server at the port, far away."""
    proxy = Path(__file__).with_name("line.py")
    with serving([sys.executable, "-B", proxy, line_port, port], line_port):
        yield


@contextmanager
def virtual_display() -> Iterator[None]:
    for number in range(90, 120):
        if Path(f"/tmp/.X{number}-lock").exists() or Path(f"/tmp/.X11-unix/X{number}").exists():
            continue
        os.environ["DISPLAY"] = f":{number}"
        with running(
            ["Xvfb", f":{number}", "-screen", "0", "1024x768x24", "-nolisten", "tcp", "-noreset"]
        ) as server:
            # Should another server take the number first, this one ends while that one answers.
            if poll(5, display_answers, 0.05) and server.poll() is None:
                yield
                return
    sys.exit("bench: no virtual display could be started")


def display_answers() -> bool:
    return subprocess.run("xdpyinfo", capture_output=True).returncode == 0
