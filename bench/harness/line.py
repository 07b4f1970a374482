"""A line to a server that is far away: passes connections on, as late and as slowly as over one.

line.py PORT SERVER_PORT

Bytes arrive half a round trip later, all connections share the rate of their direction, and a new
connection carries nothing before its own round trip is over. What is left out: lost packets, and
the server's slow start.
"""

from __future__ import annotations

import asyncio
import sys

ROUND_TRIP = 0.040  # seconds
RATE = 20e6 / 8  # bytes a second
PIECE = 4096  # bytes
IN_FLIGHT = 64  # pieces; more than half a round trip takes


class Direction:
    def __init__(self) -> None:
        self.free_at = 0.0  # when the line has sent what it was given

    def arrival(self, size: int, now: float) -> float:
        self.free_at = max(self.free_at, now) + size / RATE
        return self.free_at + ROUND_TRIP / 2


async def send(pieces: asyncio.Queue, writer: asyncio.StreamWriter) -> None:
    loop = asyncio.get_running_loop()
    while (piece := await pieces.get()) is not None:
        arrival, content = piece
        await asyncio.sleep(arrival - loop.time())
        try:
            writer.write(content)
            await writer.drain()
        except OSError:
            pass  # nobody takes the rest
    try:
        writer.write_eof()
    except OSError:
        pass  # nor the end


async def carry(
    reader: asyncio.StreamReader,
    writer: asyncio.StreamWriter,
    direction: Direction,
    established: float,
) -> None:
    loop = asyncio.get_running_loop()
    pieces: asyncio.Queue = asyncio.Queue(IN_FLIGHT)
    sender = asyncio.create_task(send(pieces, writer))
    try:
        while content := await reader.read(PIECE):
            arrival = direction.arrival(len(content), loop.time())
            await pieces.put((max(arrival, established + ROUND_TRIP / 2), content))
    except OSError:
        pass  # as an end
    await pieces.put(None)
    await sender


async def serve(port: int, server_port: int) -> None:
    there, back = Direction(), Direction()

    async def pass_on(reader: asyncio.StreamReader, writer: asyncio.StreamWriter) -> None:
        established = asyncio.get_running_loop().time() + ROUND_TRIP
        from_server, to_server = await asyncio.open_connection("127.0.0.1", server_port)
        await asyncio.gather(
            carry(reader, to_server, there, established),
            carry(from_server, writer, back, established),
        )
        to_server.close()
        writer.close()

    server = await asyncio.start_server(pass_on, "127.0.0.1", port)
    await server.serve_forever()


if __name__ == "__main__":
    asyncio.run(serve(int(sys.argv[1]), int(sys.argv[2])))
