#!/usr/bin/env python3
"""Prints CHANGELOG.md as a Debian changelog: debian_changelog.py CHANGELOG.md "NAME <ADDRESS>"."""
import datetime
import pathlib
import re
import sys
import textwrap


def main():
    text, maintainer = pathlib.Path(sys.argv[1]).read_text(), sys.argv[2]
    releases = re.findall(r"^## (\S+) \((\S+)\)\n(.*?)(?=^## |\Z)", text, re.M | re.S)
    for age, (version, day, body) in enumerate(releases):
        points = [" ".join(point.split()) for point in re.split(r"^- ", body, flags=re.M)[1:]]
        lines = "\n".join(textwrap.fill(point, 78, initial_indent="  * ", subsequent_indent="    ") for point in points)
        # Two releases of one day are told apart by their minutes.
        time = datetime.datetime.fromisoformat(day).replace(hour=12, minute=59 - age % 60)
        print(f"tarnovel ({version}) unstable; urgency=medium\n\n{lines}\n")
        print(f" -- {maintainer}  {time.strftime('%a, %d %b %Y %H:%M:00 +0000')}\n")


main()
