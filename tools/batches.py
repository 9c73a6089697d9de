#!/usr/bin/env python3
"""Says which files may be compiled as one: batches.py MOST HEADER_FOLDER FILE..., a line "NUMBER FILE" for each that has a batch.

Files of one batch share what they include, and with it half of the time that compiling takes. They also share their
unnamed namespaces, so that no two of a batch may use a name there, nor one that a header has."""
import pathlib
import re
import sys

UNNAMED = re.compile(r"^namespace \{$(.*?)^\} // namespace$", re.M | re.S)
NAMES = re.compile(r"^(?:(?:class|struct|enum|enum class|using) +(\w+)|[A-Za-z_][^\n;={()]*?[ *&>](\w+) *(?:=|\{|\(|\[|;))", re.M)


def names(text):
    return {name for match in NAMES.findall(text) for name in match if name}


def main():
    most, folder = int(sys.argv[1]), pathlib.Path(sys.argv[2])
    known = set().union(*(names(header.read_text()) for header in folder.rglob("*.h")))
    batches = []  # of one folder each: files of a folder include much of the same
    for path in map(pathlib.Path, sys.argv[3:]):
        text = path.read_text()
        own = set().union(*map(names, UNNAMED.findall(text)))
        if own & known or re.search(r"^#define|\.moc\"", text, re.M):
            continue
        fitting = (batch for batch in batches
                   if batch["folder"] == path.parent and len(batch["files"]) < most and not batch["names"] & own)
        batch = next(fitting, None)
        if batch is None:
            batch = {"folder": path.parent, "files": [], "names": set()}
            batches.append(batch)
        batch["files"].append(path)
        batch["names"] |= own
    for number, batch in enumerate(batches):
        for path in batch["files"]:
            print(number, path)


main()
