#!/usr/bin/env python3
"""How a server does for one client beside a crowd: idle connections, and clients that ask for the
whole list and never read it. Needs a running server with a plant.

    bench/crowd.py PORT [IDLE] [DEAF] [SECONDS]
"""
import resource
import socket
import statistics
import sys
import time
import urllib.request


def rss(port: int) -> float:
    """MiB, as the server itself tells it."""
    with urllib.request.urlopen(f"http://127.0.0.1:{port}/metrics") as answer:
        for line in answer.read().decode().splitlines():
            if line.startswith("process_resident_memory_bytes "):
                return float(line.split()[1]) / 2**20
    raise SystemExit("the server tells no memory")


def connect(port: int, number: int) -> socket.socket:
    """From one of eight addresses: the server lets nobody have all its connections."""
    source = (f"127.0.0.{2 + number % 8}", 0)
    client = socket.create_connection(("127.0.0.1", port), source_address=source)
    client.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
    return client


def main() -> None:
    defaults = ["", "2000", "200", "30"]
    port, idle, deaf, seconds = map(int, sys.argv[1:] + defaults[len(sys.argv) - 1:])
    hard = resource.getrlimit(resource.RLIMIT_NOFILE)[1]
    resource.setrlimit(resource.RLIMIT_NOFILE, (min(hard, 65536), hard))
    print(f"before: {rss(port):.0f} MiB")
    crowd = [connect(port, number) for number in range(idle)]
    request = b"GET /api/events?limit=100000 HTTP/1.1\r\nHost: localhost\r\n\r\n"
    for number in range(deaf):
        client = connect(port, number)
        client.sendall(request)
        crowd.append(client)
    times, highest, refused, end = [], 0.0, 0, time.monotonic() + seconds
    while time.monotonic() < end:
        start = time.monotonic()
        try:
            with urllib.request.urlopen(f"http://127.0.0.1:{port}/api/events?limit=100") as answer:
                answer.read()
            times.append(time.monotonic() - start)
        except OSError:
            refused += 1
        highest = max(highest, rss(port))
        time.sleep(0.05)
    times.sort()
    print(f"{idle} idle, {deaf} that never read, {seconds} s: {len(times)} answers, {refused} not; "
          f"median {statistics.median(times) * 1000:.1f} ms, "
          f"99 % {times[int(len(times) * 0.99)] * 1000:.1f} ms, "
          f"longest {times[-1] * 1000:.1f} ms; at most {highest:.0f} MiB")


if __name__ == "__main__":
    main()
