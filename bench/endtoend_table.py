#!/usr/bin/env python3
"""The end-to-end figures as one table, each beside its floor of the same run.

usage: endtoend_bench --benchmark_format=json | bench/endtoend_table.py
"""
import json
import sys

FLOORS = {
    "raiseBurst": "floorHandOver", "sustainRaises": "floorHandOver",
    "sustainMessages": "floorHandOver", "raiseToStream": "floorRoundTrip",
    "confirmToStream": "floorRoundTrip", "list/count": "floorRoundTrip",
    "list/search": "floorScan", "list/all": "floorCopy/60000000", "list/page": "floorCopy/60000",
    "import/100000": "floorRing",
}


def floor_of(name):
    return next((floor for start, floor in FLOORS.items() if name.startswith(start)), None)


def short(name):
    for ending in ("/real_time", "/manual_time", "/iterations:1", "/iterations:3", "/iterations:5"):
        name = name.replace(ending, "")
    return name


def scaled(run):
    """Milliseconds; of a rate, those of 100,000 events."""
    if "rate" in run:
        return 1e8 / run["rate"]
    return run["real_time"] * {"ns": 1e-6, "us": 1e-3, "ms": 1, "s": 1e3}[run["time_unit"]]


def main():
    runs = {short(run["name"]): run for run in json.load(sys.stdin)["benchmarks"]}
    print("| figure | ms | floor, ms | ratio | a second | CPU us | bytes |")
    print("| --- | ---: | ---: | ---: | ---: | ---: | ---: |")
    for name, run in runs.items():
        if name.startswith("floor"):
            continue
        time, floor = scaled(run), floor_of(name)
        least = scaled(runs[floor]) if floor in runs else None
        rate = run.get("rate", run.get("items_per_second"))
        cells = [name, f"{time:.3g}", f"{least:.3g}" if least else "",
                 f"{time / least:.1f}" if least else "", f"{rate:,.0f}" if rate else "",
                 f"{run['cpu_us']:.2f}" if "cpu_us" in run else "",
                 f"{run['bytes']:,.0f}" if "bytes" in run else ""]
        print("| " + " | ".join(cells) + " |")


if __name__ == "__main__":
    main()
