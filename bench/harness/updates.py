"""Updates to measure: what the web server offers, the place where programs run, and what a run took
by the server's log and the times of the files."""

from __future__ import annotations

import base64
import hashlib
import os
import shutil
import struct
import subprocess
from collections.abc import Callable, Iterator
from contextlib import ExitStack, contextmanager
from dataclasses import dataclass
from pathlib import Path

from figures import NotTaken, Sample
from machine import (
    FOLDER,
    WINDOWS,
    System,
    free_ports,
    line_to,
    milliseconds,
    poll,
    run,
    running,
    serving,
)
from watch import CLOSE_WRITE, MOVED_TO, OPEN, watching

SITE = FOLDER / "site"
APP = FOLDER / "app"  # where the program that is measured runs
NGINX = FOLDER / "nginx"
LOG = NGINX / "access.log"
AUTHORITY = FOLDER / "authority"  # .pem, .key and .der
PUBLISHER = FOLDER / "publisher"  # the key of signed updates: .pem and .der

TITLE = "Bench"  # of the program's window
MEGABYTE = 1_000_000
FILES = (5, 10, 100, 500, 1000)  # megabytes
SIGNED = 100  # megabytes; the update of this file is there with a signature as well
LASTING = 2000  # megabytes; at full speed still under way when a click comes
ROW_SIZE = 4096
ROWS = (5, 50, 500, 1000)
LINE_ROWS = 100  # small files; one more is large
LINE_FILE = 20 * MEGABYTE


@dataclass(frozen=True)
class Server:
    """An address of the web server, as the floors take it."""

    scheme: str
    host: str
    port: int

    @property
    def url(self) -> str:
        return f"{self.scheme}://{self.host}:{self.port}"

    @property
    def arguments(self) -> tuple[str, ...]:
        return self.scheme, self.host, str(self.port)


@dataclass(frozen=True)
class Servers:
    near: Server
    far: Server  # https, over the line


# --- The web server.


def make_certificates() -> None:
    """For localhost, of an authority that nobody else trusts."""

    def make(name: str, host: str, *options: str) -> None:
        run(
            [
                "openssl",
                "req",
                "-x509",
                "-newkey",
                "ec",
                "-pkeyopt",
                "ec_paramgen_curve:P-256",
                "-nodes",
                "-days",
                "2",
                "-subj",
                f"/CN={host}",
                "-addext",
                f"subjectAltName=DNS:{host}",
                "-keyout",
                f"{name}.key",
                "-out",
                f"{name}.pem",
                *options,
            ],
            FOLDER,
        )

    make("authority", "authority.example")
    make("localhost", "localhost", "-CA", "authority.pem", "-CAkey", "authority.key")
    run(
        ["openssl", "x509", "-in", "authority.pem", "-outform", "der", "-out", "authority.der"],
        FOLDER,
    )


@contextmanager
def trusting_the_authority(system: System) -> Iterator[None]:
    """Linux: the environment names it. Windows: it enters the user's list in the registry."""
    if system is not WINDOWS:
        yield
        return
    certificate = AUTHORITY.with_suffix(".der").read_bytes()
    digest = hashlib.sha1(certificate).hexdigest().upper()
    key = rf"HKCU\Software\Microsoft\SystemCertificates\Root\Certificates\{digest}"
    cert_cert_prop_id = 32  # of wincrypt.h
    entry = struct.pack("<III", cert_cert_prop_id, 1, len(certificate)) + certificate
    run(
        ["wine", "reg", "add", key, "/v", "Blob", "/t", "REG_BINARY", "/d", entry.hex(), "/f"],
        FOLDER,
        system.environment,
    )
    try:
        yield
    finally:
        run(["wine", "reg", "delete", key, "/f"], FOLDER, system.environment)


@contextmanager
def web_server() -> Iterator[Servers]:
    near, secure, far = free_ports(3)
    NGINX.mkdir()
    APP.mkdir()
    site = f"""root "{SITE}"; sendfile on;
      location = /slow {{ limit_rate 1k; }}
      location = /steady {{ limit_rate 2m; sendfile_max_chunk 16k; }}"""
    temporary = "".join(
        f"{use}_temp_path {use};\n" for use in ("client_body", "proxy", "fastcgi", "uwsgi", "scgi")
    )
    (NGINX / "nginx.conf").write_text(
        f"""daemon off; master_process off; pid nginx.pid; events {{}}
      http {{
      log_format times '$msec $request_time $request_method $uri';
      access_log access.log times;
      {temporary}
      server {{ listen 127.0.0.1:{near}; {site} }}
      server {{ listen 127.0.0.1:{secure} ssl; {site}
        ssl_protocols TLSv1.2 TLSv1.3;
        ssl_certificate "{FOLDER}/localhost.pem"; ssl_certificate_key "{FOLDER}/localhost.key"; }}
      }}"""
    )
    nginx = shutil.which("nginx", path=os.environ["PATH"] + ":/usr/sbin")
    with ExitStack() as stack:
        stack.enter_context(
            serving([nginx, "-p", NGINX, "-e", "error.log", "-c", "nginx.conf"], near)
        )
        stack.enter_context(line_to(secure, far))
        servers = Servers(Server("http", "127.0.0.1", near), Server("https", "localhost", far))
        lay_out_site(servers)
        yield servers


def lay_out_site(servers: Servers) -> None:
    near = servers.near.url
    SITE.mkdir()
    for size in (*FILES, LASTING):
        (SITE / str(size)).touch()
        os.truncate(SITE / str(size), size * MEGABYTE)
        offer(f"file-{size}", [f"ADD|$AppPath\\file|{near}/{size}"])
    sign(f"signed-{SIGNED}", f"file-{SIGNED}", f"{near}/{SIGNED}", SITE / str(SIGNED))
    for name in ("slow", "steady"):
        (SITE / name).hardlink_to(SITE / "500")
        offer(name, [f"ADD|$AppPath\\file|{near}/{name}"])
    (SITE / "row").mkdir()
    for row in range(max(ROWS)):
        (SITE / "row" / str(row)).write_bytes(bytes(ROW_SIZE))
    offer("row", [])  # what the floor fetches first
    for count in ROWS:
        offer(f"rows-{count}", [f"ADD|$AppPath\\{row}|{near}/row/{row}" for row in range(count)])
    lay_out_far_rows(servers.far.url)


def lay_out_far_rows(url: str) -> None:
    (SITE / "far").mkdir()
    for row in range(LINE_ROWS):
        (SITE / "far" / str(row)).hardlink_to(SITE / "row" / str(row))
    (SITE / "far" / str(LINE_ROWS)).write_bytes(bytes(LINE_FILE))
    offer("far", [f"ADD|$AppPath\\{row}|{url}/far/{row}" for row in range(LINE_ROWS + 1)])


def offer(name: str, lines: list[str]) -> None:
    """An update script whose block holds the lines."""
    script = ["1.0.0|http://127.0.0.1/none", f"NAME|{TITLE}", "VERSION|<|9.0.0", *lines]
    (SITE / f"{name}.txt").write_text("\n".join(script) + "\n")


def sign(name: str, unsigned: str, url: str, file: Path) -> None:
    """Another update script, signed by a key of its own, with the digest of its one file."""
    digest = hashlib.sha256(file.read_bytes()).hexdigest()
    script, signature = SITE / f"{name}.txt", PUBLISHER.with_suffix(".signature")
    key, public = PUBLISHER.with_suffix(".pem"), PUBLISHER.with_suffix(".der")
    script.write_text(f"{(SITE / f'{unsigned}.txt').read_text()}#SHA256|{digest}|{url}\n")
    run(["openssl", "genrsa", "-out", key, "3072"], FOLDER)
    run(["openssl", "pkey", "-in", key, "-pubout", "-outform", "DER", "-out", public], FOLDER)
    run(["openssl", "dgst", "-sha256", "-sign", key, "-out", signature, script], FOLDER)
    fields = [base64.b64encode(path.read_bytes()).decode() for path in (public, signature)]
    with script.open("a") as text:
        text.write("|".join(["#SIGNATURE", *fields]) + "\n")


# --- Programs that are measured.


@dataclass(frozen=True)
class Programs:
    """Those of one system, each of which starts in an empty folder."""

    system: System
    servers: Servers

    def prepare(self) -> None:
        """An empty folder with the program alone, without what the system's HTTP library keeps of
        earlier downloads, each of which makes the next one slower, and with all that was written
        before on the disk."""
        caches = Path(os.environ["WINEPREFIX"]).glob(
            "drive_c/users/*/AppData/Local/Microsoft/Windows/INetCache/*"
        )
        for old in (*APP.iterdir(), *caches):
            shutil.rmtree(old) if old.is_dir() else old.unlink()
        os.sync()
        os.truncate(LOG, 0)
        shutil.copy(self.system.programs / "Kestrane.exe", APP)

    def kestrane(self, script: str) -> list:
        """The command that lets the program carry out a script, and end."""
        url = f"{self.servers.near.url}/{script}.txt"
        if script.startswith("signed"):
            url += "#key=" + hashlib.sha256(PUBLISHER.with_suffix(".der").read_bytes()).hexdigest()
        return [
            *self.system.launcher,
            APP / "Kestrane.exe",
            "1.0.0",
            "any",
            url,
            "none",
            "NO",
            TITLE,
        ]

    @property
    def environment(self) -> dict[str, str]:
        return self.system.environment | {"SSL_CERT_FILE": str(AUTHORITY.with_suffix(".pem"))}

    def update(self, script: str) -> None:
        self.prepare()
        run(self.kestrane(script), APP, self.environment)

    def floor(self, *arguments: str | int) -> None:
        self.helper("floor", *arguments)

    def helper(self, name: str, *arguments: str | int) -> str:
        """Runs one of the small programs; what it prints."""
        self.prepare()
        program = self.system.programs / "bench" / f"{name}.exe"
        return run([*self.system.launcher, program, *arguments], APP, self.environment)

    def time_told_by(self, name: str, *arguments: str | int) -> Sample:
        return {"time": float(self.helper(name, *arguments))}

    @contextmanager
    def download(self, script: str) -> Iterator[subprocess.Popen]:
        """The program at a download, which ends with the block."""
        self.prepare()
        with running(self.kestrane(script), cwd=APP, env=self.environment) as process:
            if not poll(30, is_downloading):
                raise NotTaken("the download did not begin")
            yield process


def is_downloading() -> bool:
    return (APP / "file.tmp").exists()


# --- What a run took.


@dataclass(frozen=True)
class Request:
    """Times are in seconds."""

    end: float
    duration: float
    method: str
    path: str

    @property
    def start(self) -> float:
        return self.end - self.duration


def requests(method: str, folder: str, count: int) -> list[Request]:
    """Those that the server has answered; it may log the last one late."""

    def logged() -> list[Request]:
        lines = [line.split() for line in LOG.read_text().splitlines()]
        every = [
            Request(float(end), float(took), method, path) for end, took, method, path in lines
        ]
        return [
            request
            for request in every
            if request.method == method and request.path.startswith(folder)
        ]

    if not poll(5, lambda: len(logged()) >= count) or len(logged()) != count:
        raise NotTaken(f"{len(logged())} requests {method} of {folder} instead of {count}")
    return logged()


def stat_of(name: str, size: int) -> os.stat_result:
    file = APP / name
    if not file.exists() or file.stat().st_size != size:
        raise NotTaken(f"{name} was not downloaded")
    return file.stat()


def file_sample(size: int) -> Sample:
    """From the first byte of the GET at the server to the last write of the file."""
    [get] = requests("GET", f"/{size}", 1)
    return {"time": milliseconds(get.start, stat_of("file", size * MEGABYTE).st_mtime)}


def rows_sample(folder: str, sizes: list[int], update: Callable[[], None]) -> Sample:
    """Of an update that fetches the files 0, 1 ... of a folder. Probes from the first to the last
    HEAD; downloads from the first GET to the last file closed; installation from the first renaming
    of a file to the last."""
    first, last = SITE / folder / "0", SITE / folder / str(len(sizes) - 1)
    with watching({first: OPEN, last: OPEN, APP: CLOSE_WRITE | MOVED_TO}) as watch:
        update()
    requests("HEAD", f"/{folder}/", 2 * len(sizes))
    requests("GET", f"/{folder}/", len(sizes))
    for row, size in enumerate(sizes):
        stat_of(str(row), size)
    probing, *_, fetching = watch.happened(OPEN, first)
    *_, probed, _ = watch.happened(OPEN, last)
    closed, renamed = watch.happened(CLOSE_WRITE, APP), watch.happened(MOVED_TO, APP)
    return {
        "probes": milliseconds(probing, probed),
        "download": milliseconds(fetching, closed[-1]),
        "install": milliseconds(renamed[0], renamed[-1]),
        "all": milliseconds(probing, renamed[-1]),
    }
