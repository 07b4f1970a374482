"""When files are opened, closed and renamed, finer than the clock by which the file system stamps
them, which is of milliseconds."""

from __future__ import annotations

import ctypes
import os
import select
import struct
import threading
import time
from collections.abc import Iterator
from contextlib import contextmanager
from dataclasses import dataclass, field
from pathlib import Path

from figures import NotTaken

# Numbers of sys/inotify.h.
CLOSE_WRITE, MOVED_TO, OPEN = 0x08, 0x80, 0x20
HEAD = struct.Struct("iIII")  # watch, mask, cookie, length of the name that follows

libc = ctypes.CDLL(None, use_errno=True)


@dataclass
class Watch:
    """Seconds at which things happened, in their order."""

    descriptor: int
    paths: dict[int, Path] = field(default_factory=dict)
    times: dict[tuple[int, Path], list[float]] = field(default_factory=dict)

    def add(self, path: Path, kinds: int) -> None:
        watch = libc.inotify_add_watch(self.descriptor, os.fsencode(path), kinds)
        if watch < 0:
            raise NotTaken(f"{path} cannot be watched: {os.strerror(ctypes.get_errno())}")
        self.paths[watch] = path

    def happened(self, kind: int, path: Path) -> list[float]:
        times = self.times.get((kind, path), [])
        if not times:
            raise NotTaken(f"nothing was seen of {path}")
        return times

    def read(self) -> None:
        now = time.perf_counter()
        events = os.read(self.descriptor, 65536)
        while events:
            watch, mask, _, length = HEAD.unpack_from(events)
            events = events[HEAD.size + length :]
            for kind in (CLOSE_WRITE, MOVED_TO, OPEN):
                if mask & kind:
                    self.times.setdefault((kind, self.paths[watch]), []).append(now)

    def read_until(self, over: threading.Event) -> None:
        while select.select([self.descriptor], [], [], 0.05)[0] or not over.is_set():
            if select.select([self.descriptor], [], [], 0)[0]:
                self.read()


@contextmanager
def watching(paths: dict[Path, int]) -> Iterator[Watch]:
    """Sees what happens to files, and in folders, within the block: kinds by path."""
    watch = Watch(libc.inotify_init1(os.O_CLOEXEC))
    over = threading.Event()
    reader = threading.Thread(target=watch.read_until, args=[over])
    try:
        for path, kinds in paths.items():
            watch.add(path, kinds)
        reader.start()
        yield watch
    finally:
        over.set()
        if reader.ident:
            reader.join()
        os.close(watch.descriptor)
