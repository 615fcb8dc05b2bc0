#!/usr/bin/env python3
"""Tries what the documents say. Each block of shell commands is marked in the line before it:

  <!-- tried: PLACE -->     tree: in the sources; windows: there, with the Windows build;
                            system: as root in a system with the packages installed
  <!-- not tried: WHY -->

documents.py check PROGRAM           every block is marked; files of the sources that are named are
                                     there, and so is what links lead to; the manual page and
                                     docs/server.md have the options that `PROGRAM --help` has, the
                                     documents the metrics and log lines that the sources have
documents.py PLACE [PORT [ROOT]]     runs the blocks of a place, those of a document as one script
                                     that ends at the first failure; a server is to listen on PORT
                                     in the place of 8080
"""
import pathlib
import re
import subprocess
import sys

FOLDER = pathlib.Path(__file__).resolve().parents[2]
PLACES = ("tree", "windows", "system")
BLOCK = re.compile(r"(?:^<!-- (not tried|tried): (.*?) -->\n)?^```sh\n(.*?)^```$", re.M | re.S)
SOURCE = re.compile(r"`((?:src|server|simulator|tests|docs|cmake|packaging|examples|bench|fuzz|scripts|demo)"
                    r"/[\w/.-]+)`")
LINK = re.compile(r"\]\((?!https?:)([^)#\s]*)(?:#([^)\s]+))?\)")
LOGGED = re.compile(r"\blog\((?!LogLevel::debug)(?:LogLevel::)?\w+,(.*?)\);", re.S)
LITERAL = re.compile(r'"((?:[^"\\]|\\.)*)"')
LIMIT = 600  # seconds for a document


def fail(text):
    sys.exit(f"documents.py: {text}")


def documents():
    """Names and texts of all that git would keep."""
    names = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", "*.md"], cwd=FOLDER,
                           check=True, capture_output=True, text=True).stdout.split()
    for name in sorted(names):
        yield name, (FOLDER / name).read_text(encoding="utf-8")


def options_of(text):
    return set(re.findall(r"(?<![\w-])--[a-z][a-z-]+", text.replace("\\-", "-")))


def sources(*folders):
    for folder in folders:
        for path in sorted((FOLDER / folder).rglob("*.cpp")):
            yield path.relative_to(FOLDER), path.read_text(encoding="utf-8")


def anchors_of(text):
    """As they are made of headings."""
    return {re.sub(r"[^\w -]", "", heading).strip().lower().replace(" ", "-")
            for heading in re.findall(r"^#+ (.*)$", text, re.M)}


def check_links():
    texts = dict(documents())
    for name, text in texts.items():
        for path, anchor in LINK.findall(text):
            file = ((FOLDER / name).parent / path).resolve() if path else FOLDER / name
            if not file.exists():
                fail(f"{name}: a link to {path}, which is not there")
            if anchor and anchor not in anchors_of(file.read_text(encoding="utf-8")):
                fail(f"{name}: {path}#{anchor} is no heading")


def check_what_is_told():
    """Metrics in docs/server.md; in docs/engineer.md, too, the longest text of each log line and the
    names of the extension's entries."""
    server, engineer = ((FOLDER / f"docs/{name}.md").read_text(encoding="utf-8")
                        for name in ("server", "engineer"))
    metrics = set()
    for path, text in sources("server"):
        metrics |= set(re.findall(r'"(hmi_[a-z_]*[a-z])"', text))
        for call in LOGGED.findall(text):
            told = max(LITERAL.findall(call), key=len, default="").replace("\\", "").strip(" :;,")
            if told not in engineer:
                fail(f'{path} logs "{told}", of which docs/engineer.md says nothing')
    for name in sorted(metrics):
        if f"`{name}`" not in server:
            fail(f"docs/server.md does not have {name}")
    for path, text in sources("src/events", "src/targetsystem", "src/extension", "src/host"):
        for name in re.findall(r'"([A-Z]+(?:_[A-Z]+)+)"', text):
            if name not in server + engineer:
                fail(f"{path} says {name}, the documents do not")


def check(program):
    check_links()
    check_what_is_told()
    for name, text in documents():
        for block in BLOCK.finditer(text):
            kind, place, _ = block.groups()
            if kind is None or (kind == "tried" and place not in PLACES):
                fail(f"{name}:{text[:block.start()].count(chr(10)) + 1}: where are these commands tried?")
        for path in SOURCE.findall(text):
            if not list(FOLDER.glob(path + "*")):  # a class may be named without its suffix
                fail(f"{name}: there is no {path}")
    options = options_of(subprocess.run([program, "--help"], check=True, capture_output=True,
                                        text=True).stdout)
    for name in ("packaging/hmi-server.1", "docs/server.md"):
        known = options_of((FOLDER / name).read_text(encoding="utf-8"))
        if options - known:
            fail(f"{name} does not have {' '.join(sorted(options - known))}")
    known = options_of((FOLDER / "packaging/hmi-server.1").read_text(encoding="utf-8"))
    if known - options:
        fail(f"the manual page has {' '.join(sorted(known - options))}, which the program has not")


def run(place, port, root):
    around = []
    if root:
        around = ["chroot", root, "env", "-i", "--chdir=/tmp", "HOME=/root", "LC_ALL=C.UTF-8",
                  "PATH=/usr/sbin:/usr/bin:/sbin:/bin"]
    for name, text in documents():
        commands = [block[2] for block in BLOCK.findall(text) if block[:2] == ("tried", place)]
        if not commands:
            continue
        script = "set -e\n" + "\n".join(commands)
        if port:
            script = script.replace("127.0.0.1:8080", f"127.0.0.1:{port}")
        print(f"   {name}: {len(commands)} blocks", flush=True)
        answer = subprocess.run(around + ["bash", "-c", script], cwd=FOLDER, timeout=LIMIT, text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if answer.returncode != 0:
            fail(f"{name}: exit code {answer.returncode}\n{script}\n{answer.stdout}")


what, *rest = sys.argv[1:] + [None, None]
if what == "check":
    check(rest[0])
elif what in PLACES:
    run(what, rest[0], rest[1])
else:
    fail(__doc__)
