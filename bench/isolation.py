#!/usr/bin/env python3
"""What a healthy target system gets beside twenty that hang, and what two hundred cost when idle.

usage: bench/isolation.py [BUILD_FOLDER]       (build/release unless told)
Starts hmi-server on a plant of its own, on the loopback address; prints a table; needs no package.
"""
import json
import os
import signal
import subprocess
import sys
import tempfile
import threading
import time
import urllib.request

BUILD = sys.argv[1] if len(sys.argv) > 1 else "build/release"
CLASS = "{0000ABCD-0001-0002-0304-05060708090A}"
TIMEOUT = 5
SICK = 20
KINDS = ["ConnectWithSettings", "IsConnected", "GetLoggedEvents", "Severity", "Confirm",
         "GetEventText", "Disconnect"]


def net_id(index):
    return f"5.10.{20 + index // 200}.{index % 200 + 1}.1.1"


class Server:
    def __init__(self, targets):
        self.folder = tempfile.TemporaryDirectory()
        runtime = {"eventClasses": {CLASS: {"name": {"1033": "Machine"}, "events": {
            "1": {"kind": "alarm", "severity": 3, "confirm": True,
                  "text": {"1033": "Temperature {0} too high"}}}}}}
        plant = {"localNetId": "5.10.20.1.1.1",
                 "runtimes": {net_id(i): runtime for i in range(targets)}}
        config = {"TIMEOUT": f"PT{TIMEOUT}S", "LIMIT_EVENT_COUNT": 1000,
                  "PRELOAD_TRANSLATIONS": False,
                  "TARGET_SYSTEMS": {f"T{i}": {"ADDRESS": net_id(i), "ENABLED": True}
                                     for i in range(targets)}}
        files = {}
        for name, content in (("plant", plant), ("config", config)):
            files[name] = os.path.join(self.folder.name, name + ".json")
            with open(files[name], "w", encoding="utf-8") as file:
                json.dump(content, file)
        self.process = subprocess.Popen(
            [f"{BUILD}/bin/hmi-server", "--extension", f"{BUILD}/bin/libZrHmiEventLogger.so",
             "--config", files["config"], "--plant", files["plant"], "--port", "0",
             "--log-level", "error"], stdout=subprocess.PIPE, text=True)
        self.url = self.process.stdout.readline().split()[-1]

    def ask(self, method, path, body=None, patience=60):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.url + path, data, method=method)
        request.add_header("Content-Type", "application/json")
        try:
            with urllib.request.urlopen(request, timeout=patience) as answer:
                return json.load(answer)
        except urllib.error.HTTPError as error:
            return {"status": error.code, "body": error.read().decode()}

    def act(self, index, *actions):
        self.ask("POST", f"/sim/{net_id(index)}", list(actions))

    def runtime(self, index):
        return self.ask("GET", f"/sim/{net_id(index)}")

    def alarms(self, index):
        return self.ask("GET", f"/api/events?target=T{index}&kind=alarm&state=active")["events"]

    def stop(self):
        start = time.monotonic()
        self.process.send_signal(signal.SIGTERM)
        code = self.process.wait(timeout=60)
        return time.monotonic() - start, code


def until(condition, patience=30):
    start = time.monotonic()
    while not condition():
        if time.monotonic() - start > patience:
            raise RuntimeError("it never came")
        time.sleep(0.002)
    return time.monotonic() - start


def timed(function):
    start = time.monotonic()
    answer = function()
    return time.monotonic() - start, answer


def show(what, seconds, goal):
    print(f"{what:<64} {seconds * 1000:9.1f} ms   goal {goal}")


def raise_alarm(name):
    return {"do": "raise", "alarm": name, "class": CLASS, "event": 1, "arguments": [95]}


def longest_gap(server, index, seconds):
    end = time.monotonic() + seconds
    last, seen, gap = time.monotonic(), server.runtime(index)["calls"]["IsConnected"], 0
    while time.monotonic() < end:
        now = server.runtime(index)["calls"]["IsConnected"]
        if now != seen:
            gap, last, seen = max(gap, time.monotonic() - last), time.monotonic(), now
        time.sleep(0.002)
    return gap


def fall_sick(server, index, background):
    call = KINDS[index % len(KINDS)]
    server.act(index, raise_alarm("old"))
    until(lambda: server.alarms(index))
    server.act(index, {"do": "pause", "call": call})
    event = server.alarms(index)[0]["id"]
    if call in ("ConnectWithSettings", "GetLoggedEvents"):
        server.act(index, {"do": "drop"})
    elif call == "Severity":
        server.act(index, raise_alarm("new"))
    else:
        ask = {"Confirm": ("POST", "/api/confirmations", {"events": [{"id": event}]}),
               "GetEventText": ("GET", f"/api/events/{event}?locale=en-US"),
               "Disconnect": ("POST", "/api/commands",
                              [{"command": "ForceReconnect", "writeValue": f"T{index}"}])}
        if call in ask:
            thread = threading.Thread(target=server.ask, args=ask[call], daemon=True)
            thread.start()
            background.append(thread)


def isolation():
    server = Server(SICK + 1)
    healthy = SICK
    until(lambda: all(t["state"] == "good" for t in server.ask("GET", "/api/targets")))
    stop = threading.Event()
    background = []
    for index in range(SICK):
        fall_sick(server, index, background)

    def keep_sick():  # what hangs ends with its time-out: let it hang again
        while not stop.wait(TIMEOUT / 2):
            for index in range(SICK):
                server.act(index, {"do": "pause", "call": KINDS[index % len(KINDS)]})
    threading.Thread(target=keep_sick, daemon=True).start()

    show("longest time between two checks of the healthy one, 10 s",
         longest_gap(server, healthy, 10), "0.7 s")
    server.act(healthy, {"do": "drop"})
    show("dropped: connected again after",
         until(lambda: server.runtime(healthy)["connected"]), "1.2 s")
    server.act(healthy, raise_alarm("urgent"))
    show("raised: listed after", until(lambda: server.alarms(healthy)), "0.5 s")
    event = server.alarms(healthy)[0]["id"]
    show("its confirmation", timed(lambda: server.ask(
        "POST", "/api/confirmations", {"events": [{"id": event}]}))[0], "100 ms")
    show("\"Diagnostics\"", timed(lambda: server.ask(
        "POST", "/api/commands", [{"command": "Diagnostics"}]))[0], "100 ms")
    show("a localized list of all targets",
         timed(lambda: server.ask("GET", "/api/events?locale=en-US"))[0], "400 ms")
    path = f"/api/config/TARGET_SYSTEMS::T{healthy}"
    for enabled in (False, True):
        show(f"the healthy one's \"ENABLED\" set to {str(enabled).lower()}", timed(
            lambda: server.ask("PUT", path, {"ADDRESS": net_id(healthy), "ENABLED": enabled}))[0],
             "100 ms")
    for index in range(len(KINDS)):
        seconds, answer = timed(
            lambda: server.ask("DELETE", f"/api/config/TARGET_SYSTEMS::T{index}"))
        show(f"removal of one that hangs in {KINDS[index]}, {answer}", seconds, "5.5 s")
    stop.set()
    for index in range(SICK):
        server.act(index, {"do": "pause", "call": KINDS[index % len(KINDS)]})
    seconds, code = server.stop()
    show(f"SIGTERM to exit with {code}", seconds, "7 s")


def idle():
    server = Server(200)
    until(lambda: all(t["state"] == "good" for t in server.ask("GET", "/api/targets")), 60)
    time.sleep(2)

    def used():
        with open(f"/proc/{server.process.pid}/stat", encoding="ascii") as file:
            fields = file.read().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK"), int(fields[17])
    before, _ = used()
    time.sleep(20)
    after, threads = used()
    print(f"200 idle targets: {100 * (after - before) / 20:.1f} % of a core (goal 2 %), "
          f"{threads} threads")
    server.stop()


if __name__ == "__main__":
    isolation()
    idle()
