#!/usr/bin/env python3
"""Ten minutes of clients that nobody wants: garbage, halves, slowness, smuggling, endless headers and
bodies, broken frames, resets, and among them requests that change everything. Starts a server of its
own on the demo plant; best with one that was built with sanitizers.

    fuzz/chaos.py BIN_DIRECTORY [--seconds 600] [--workers 200] [--seed N]

Ends with 0 when the server answered a well-behaved client all the time, let through no smuggled
request, stopped as it was told, and no sanitizer has reported anything.
"""
import argparse
import asyncio
import collections
import pathlib
import random
import re
import shutil
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import time

PATHS = ["/", "/page/operator.js", "/healthz", "/readyz", "/metrics", "/api/version",
         "/api/openapi.json", "/api/session", "/api/events", "/api/events?limit=100000&locale=de-DE",
         "/api/events?text=a&order=-name&group=1&counts=1", "/api/events.csv?locale=en-US",
         "/api/statistics?locale=en-US", "/api/events/1?locale=ru-RU", "/api/events/m5",
         "/api/targets", "/api/log?limit=1000", "/api/config", "/api/config/TARGET_SYSTEMS::Filler",
         "/sim/5.10.20.30.1.1", "/api/nothing", "//", "/%2e%2e/%00", "http://localhost/healthz"]
POSTS = [("POST", "/api/events/1/confirm", b"{}"),
         ("POST", "/api/confirmations", b'{"events": [{"id": 1}, {"id": 2}]}'),
         ("POST", "/api/commands", b'[{"command": "Diagnostics"}]'),
         ("POST", "/api/commands", b'[{"command": "ForceReconnect", "writeValue": "Filler"}]'),
         ("POST", "/api/config/check", b'{"path": "TARGET_SYSTEMS::Filler"}'),
         ("PUT", "/api/config/NOTE", b'{"a": [1, 2, 3]}'),
         ("PUT", "/api/config/TARGET_SYSTEMS::Chaos", b'{"ADDRESS": "1.2.3", "ENABLED": true}'),
         ("DELETE", "/api/config/TARGET_SYSTEMS::Chaos", b""),
         ("POST", "/sim/5.10.20.30.1.1", b'{"do": "drop"}'),
         ("POST", "/sim/5.10.20.30.1.1", b'{"do": "raise", "alarm": "c", "count": 20, "event": 1, '
          b'"class": "{3C5E0A71-84D2-4B1F-9E60-2A7D41C8F001}"}'),
         ("POST", "/api/session", b'{"user": "a", "password": "b"}')]
SMUGGLED = b"GET /healthz HTTP/1.1\r\nHost: localhost\r\n\r\n"


def request(method: str, path: str, body: bytes = b"", extra: str = "") -> bytes:
    head = f"{method} {path} HTTP/1.1\r\nHost: localhost\r\n{extra}"
    if body:
        head += f"Content-Length: {len(body)}\r\n"
    return head.encode() + b"\r\n" + body


class Client:
    """A connection from one of many addresses, which ends without manners."""

    def __init__(self, port: int, rng: random.Random):
        self.port, self.rng = port, rng

    async def __aenter__(self):
        source = (f"127.0.0.{self.rng.randrange(2, 40)}", 0)
        self.reader, self.writer = await asyncio.open_connection("127.0.0.1", self.port,
                                                                 local_addr=source, limit=1 << 16)
        return self

    async def __aexit__(self, *_):
        if self.rng.random() < 0.5:  # a reset in the place of an end
            self.writer.get_extra_info("socket").setsockopt(
                socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        self.writer.close()

    async def send(self, data: bytes):
        self.writer.write(data)
        await self.writer.drain()

    async def read(self, seconds: float = 1.0) -> bytes:
        """All that comes within that time."""
        data, end = b"", time.monotonic() + seconds
        while (left := end - time.monotonic()) > 0 and len(data) < 1 << 22:
            try:
                part = await asyncio.wait_for(self.reader.read(1 << 16), left)
            except asyncio.TimeoutError:
                break
            if not part:
                break
            data += part
        return data


def any_request(rng: random.Random) -> bytes:
    if rng.random() < 0.3:
        return request(*rng.choice(POSTS))
    return request(rng.choice(["GET", "GET", "GET", "HEAD", "OPTIONS", "PATCH", "DELETE"]),
                   rng.choice(PATHS), extra=rng.choice(["", "Accept-Encoding: gzip\r\n",
                                                        "Connection: close\r\n"]))


def mutated(rng: random.Random, data: bytes) -> bytes:
    data = bytearray(data)
    for _ in range(rng.randrange(1, 12)):
        at = rng.randrange(len(data))
        what = rng.random()
        if what < 0.5:
            data[at] = rng.randrange(256)
        elif what < 0.7:
            del data[at:at + rng.randrange(1, 20)]
        else:
            data[at:at] = rng.choice([b"\r\n", b"\n", b"\0", b"%", b"\xff\xfe", b": ", b"\t",
                                      b"0" * 30, b"[" * 100, bytes(rng.randrange(200))])
        if not data:
            break
    return bytes(data)


async def garbage(client, rng):
    await client.send(rng.randbytes(rng.randrange(1, 20000)))
    await client.read(0.3)


async def mutation(client, rng):
    await client.send(b"".join(mutated(rng, any_request(rng)) for _ in range(rng.randrange(1, 4))))
    await client.read(0.5)


async def half(client, rng):
    data = any_request(rng)
    await client.send(data[:rng.randrange(1, len(data))])
    await asyncio.sleep(rng.random() * 2)


async def slow(client, rng):
    for byte in any_request(rng)[:40]:
        await client.send(bytes([byte]))
        await asyncio.sleep(rng.random() * 0.1)


async def endless_header(client, rng):
    await client.send(b"GET / HTTP/1.1\r\nHost: localhost\r\n")
    for _ in range(rng.randrange(4, 64)):
        await client.send(b"X: " + b"a" * 4096 + b"\r\n")


async def endless_chunk(client, rng):
    await client.send(request("POST", "/api/commands", extra="Transfer-Encoding: chunked\r\n"))
    start, rest = rng.choice([(b"5;", b"x" * 4096), (b"0\r\n", b"T: " + b"y" * 4000 + b"\r\n"),
                              (b"", b"1000\r\n" + b"[" * 4096 + b"\r\n")])
    await client.send(start)
    for _ in range(rng.randrange(4, 400)):
        await client.send(rest)


async def huge_body(client, rng):
    length = rng.choice([1 << 20, (1 << 20) + 1, 10 << 30, (1 << 64) - 1, 1 << 64])
    await client.send(request("POST", "/api/commands", extra=f"Content-Length: {length}\r\n"))
    for _ in range(rng.randrange(64)):
        await client.send(b"[" * 16384)
    await client.read(0.2)


async def smuggle(client, rng):
    length = str(len(SMUGGLED))
    head = rng.choice([
        f"Content-Length: {length}\r\nContent-Length: 0\r\n",
        f"Content-Length: {length}\r\nTransfer-Encoding: chunked\r\n",
        "Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n",
        "Transfer-Encoding: identity\r\n", "Transfer-Encoding: xchunked\r\n",
        "Transfer-Encoding: chunked, identity\r\n", "Transfer-Encoding:\x0bchunked\r\n",
        f"Content-Length: +{length}\r\n", f"Content-Length: 0x{length}\r\n",
        "Content-Length: -1\r\n", "Host: other\r\n"])
    await client.send(request("POST", "/api/commands", extra=head) + SMUGGLED)
    answers = (await client.read(3)).count(b"HTTP/1.1 ")
    if answers > 1:
        raise AssertionError(f"{answers} answers to one request with {head!r}")


async def pipeline(client, rng):
    await client.send(b"".join(any_request(rng) for _ in range(rng.randrange(2, 50))))
    await client.read(rng.choice([0, 0.2, 2]))


async def deaf(client, rng):
    client.writer.get_extra_info("socket").setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
    await client.send(request("GET", "/api/events?limit=100000"))
    await asyncio.sleep(rng.random() * 4)


async def frames(client, rng):
    await client.send(request("GET", rng.choice(["/api/stream", "/api/stream?types=alive",
                                                 "/api/stream?types=a"]),
                              extra="Upgrade: websocket\r\nConnection: Upgrade\r\n"
                              "Sec-WebSocket-Version: 13\r\n"
                              "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n"))
    await client.read(0.2)
    for _ in range(rng.randrange(20)):
        opcode = rng.choice([0x01, 0x02, 0x80, 0x81, 0x83, 0x88, 0x89, 0x8A, 0x8F, 0xF1])
        length = rng.choice([0x00, 0x05, 0x80, 0x85, 0xFE, 0xFF, 0x7F])
        await client.send(bytes([opcode, length]) + rng.randbytes(rng.randrange(30)))
    await client.read(0.2)


async def half_closed(client, rng):
    await client.send(any_request(rng))
    client.writer.write_eof()
    await client.read(1)


ATTACKS = [garbage, mutation, mutation, half, slow, endless_header, endless_chunk, huge_body, smuggle,
           pipeline, deaf, frames, half_closed]


class Chaos:
    def __init__(self, port: int, seed: int, seconds: float):
        self.port, self.seed, self.end = port, seed, time.monotonic() + seconds
        self.done, self.faults, self.probes = collections.Counter(), [], []

    async def attack(self, number: int):
        rng = random.Random(self.seed * 1000 + number)
        while time.monotonic() < self.end:
            kind = rng.choice(ATTACKS)
            try:
                async with Client(self.port, rng) as client:
                    await asyncio.wait_for(kind(client, rng), 10)
            except AssertionError as fault:
                self.faults.append(str(fault))
            except (OSError, asyncio.TimeoutError):
                pass  # the server has had enough of it, as it may
            self.done[kind.__name__] += 1

    async def probe(self):
        """One that behaves, and is to be answered."""
        while time.monotonic() < self.end:
            start = time.monotonic()
            try:
                reader, writer = await asyncio.open_connection("127.0.0.1", self.port)
                writer.write(request("GET", "/api/events?limit=100", extra="Connection: close\r\n"))
                answer = await asyncio.wait_for(reader.read(1 << 16), 20)
                writer.close()
                if not answer.startswith(b"HTTP/1.1 200"):
                    self.faults.append(f"the list was answered with {answer[:60]!r}")
            except (OSError, asyncio.TimeoutError) as error:
                self.faults.append(f"the list was not answered: {error!r}")
            self.probes.append(time.monotonic() - start)
            await asyncio.sleep(0.5)

    async def run(self, workers: int):
        await asyncio.gather(self.probe(), *(self.attack(number) for number in range(workers)))


def main() -> int:
    parser = argparse.ArgumentParser()
    parser.add_argument("bin", type=pathlib.Path)
    parser.add_argument("--seconds", type=float, default=600)
    parser.add_argument("--workers", type=int, default=200)
    parser.add_argument("--seed", type=int, default=random.randrange(1 << 30))
    options = parser.parse_args()
    demo = pathlib.Path(__file__).parent.parent / "demo"
    with tempfile.TemporaryDirectory() as folder:
        config = shutil.copy(demo / "config.json", folder)
        log = pathlib.Path(folder) / "log"
        with log.open("w") as errors:
            server = subprocess.Popen(
                [options.bin / "hmi-server", "--extension", options.bin / "libZrHmiEventLogger.so",
                 "--config", config, "--plant", demo / "plant.json", "--port", "0"],
                stdout=subprocess.PIPE, stderr=errors, text=True)
        try:
            told = server.stdout.readline()
            if not told:
                print(log.read_text())
                return 1
            port = int(told.rsplit(":", 1)[1])
            chaos = Chaos(port, options.seed, options.seconds)
            asyncio.run(chaos.run(options.workers))
            memory = re.search(r"VmHWM:\s+(\d+)",
                               pathlib.Path(f"/proc/{server.pid}/status").read_text())
        finally:
            server.send_signal(signal.SIGTERM)
            code = server.wait(60)
        text = log.read_text(errors="replace")
    faults = chaos.faults + re.findall(r".*(?:ERROR: \w+Sanitizer|runtime error:).*", text)
    if code != 0:
        faults.append(f"the server ended with {code}: {text[-2000:]}")
    print(f"seed {options.seed}: {sum(chaos.done.values())} connections {dict(chaos.done)}; "
          f"{len(chaos.probes)} lists, the slowest after {max(chaos.probes):.2f} s; "
          f"at most {int(memory[1]) // 1024 if memory else 0} MiB; {len(faults)} faults")
    for fault, count in collections.Counter(faults).most_common(20):
        print(f"{count} times: {fault}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
