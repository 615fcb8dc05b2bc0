#!/usr/bin/env python3
"""Makes ../LocaleTable.inc, the table of LocaleNames.cpp, from locale-names.txt beside this file,
which describes its own form. Run it without arguments after a change and keep both in the tree;
with --check it only tells whether they fit."""

import pathlib
import re
import sys

CUSTOM = 0x1000


def parse(text):
    """Yields every (name, identifier); the identifier None is the custom one of a language."""
    for line in text.splitlines():
        head, *items = line.partition("#")[0].split() or [None]
        if head is None:
            continue
        if head.startswith("0x"):
            yield from ((name, int(head, 16)) for name in items)
        elif items[0] == "*":
            yield head, None
            yield from ((f"{head}-{item}", CUSTOM) for item in items[1:])
        else:
            yield from parse_language(head, *items)


def parse_language(language, number, *items):
    primary, _, own = number.partition(".")
    yield language, identifier(primary, int(own or "0", 16))
    sublanguage = 0
    for item in items:
        subtags, _, explicit = item.partition("=")
        sublanguage = int(explicit, 16) if explicit else sublanguage + 1
        yield f"{language}-{subtags}", identifier(primary, sublanguage)


def identifier(primary, sublanguage):
    if sublanguage >= 1 << 6:
        raise SystemExit(f"{sublanguage:X} is no sublanguage")
    return sublanguage << 10 | int(primary, 16)


def collect(names):
    table = {}
    for name, number in names:
        key = name.lower()
        if number is None:
            table.setdefault(key, (CUSTOM, name))
        elif key in table:
            raise SystemExit(f"{name} stands twice")
        else:
            table[key] = number, name
    return table


def is_neutral(name):
    """A language, perhaps with a script, but of no region; pseudo-locales are not neutral."""
    return not re.search(r"-([A-Z]{2}|[0-9]{3})\b|^qps", name.replace("_", "-"))


def main():
    folder = pathlib.Path(__file__).resolve().parent
    table = collect(parse((folder / "locale-names.txt").read_text(encoding="ascii")))
    rows = [
        f'{{"{key}", 0x{number:04X}, {str(is_neutral(name)).lower()}}},\n'
        for key, (number, name) in sorted(table.items())
    ]
    header = "// Made by data/make-locale-table.py: name, identifier, neutral or not.\n"
    made = header + "".join(rows)
    file = folder.parent / "LocaleTable.inc"
    if sys.argv[1:] != ["--check"]:
        file.write_text(made, encoding="ascii")
    elif file.read_text(encoding="ascii") != made:
        raise SystemExit("LocaleTable.inc was not made from this locale-names.txt")


if __name__ == "__main__":
    main()
