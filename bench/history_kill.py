#!/usr/bin/env python3
"""Kills a writer of the history at random moments and looks at what is there then.

usage: history_kill.py PROGRAM FILE [TIMES]

PROGRAM is history_bench. After each kill the file must open, and hold all that was told more than a
quarter of a second before; in the end every change must be there once.
"""
import json
import random
import sqlite3
import subprocess
import sys
import threading
import time


def run(program, file):
    """Answers when the writer was killed, and what it had told by then: times and numbers."""
    told = []
    writer = subprocess.Popen([program, "live", file], stdout=subprocess.PIPE, text=True)

    def follow():
        for line in writer.stdout:
            if line.endswith("\n"):
                told.append((time.monotonic(), int(line)))

    reader = threading.Thread(target=follow)
    reader.start()
    limit = time.monotonic() + 60
    while not told and time.monotonic() < limit:
        time.sleep(0.01)
    time.sleep(random.uniform(0, 1.5))
    writer.kill()
    killed = time.monotonic()
    writer.wait()
    reader.join()
    return killed, told


def numbers(file):
    with sqlite3.connect(file) as database:
        rows = database.execute("SELECT event FROM change WHERE digest IS NOT NULL")
        return [json.loads(event)["parameters"]["number"] for (event,) in rows]


def main():
    program, file = sys.argv[1], sys.argv[2]
    times = int(sys.argv[3]) if len(sys.argv) > 3 else 100
    worst = 0.0
    for turn in range(times):
        killed, told = run(program, file)
        with sqlite3.connect(file) as database:
            (newest,) = database.execute(
                "SELECT event FROM change ORDER BY place DESC LIMIT 1").fetchone()
        kept = json.loads(newest)["parameters"]["number"]
        missing = [at for at, number in told if number > kept]
        late = max((killed - at for at in missing), default=0.0)
        worst = max(worst, late)
        print(f"{turn + 1}: told up to {told[-1][1]}, kept up to {kept}, "
              f"{late * 1000:.0f} ms missing", flush=True)
    # One more start brings back what the last kill cost.
    run(program, file)
    there = sorted(numbers(file))
    doubled = len(there) - len(set(there))
    lost = there[-1] + 1 - len(set(there))
    with sqlite3.connect(file) as database:
        (check,) = database.execute("PRAGMA integrity_check").fetchone()
    print(f"{len(there)} changes, {lost} lost, {doubled} doubled, worst {worst * 1000:.0f} ms, "
          f"integrity {check}")
    return 0 if lost == doubled == 0 and check == "ok" and worst <= 0.25 else 1


if __name__ == "__main__":
    sys.exit(main())
