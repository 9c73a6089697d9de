#!/usr/bin/env python3
"""Looks into a built program for what the release is hardened with: an executable that can lie anywhere, a table of
addresses that is closed before main, canaries, checked string functions, and no stack to run from."""
import pathlib
import platform
import re
import subprocess
import sys

ENDBR64 = b"\xf3\x0f\x1e\xfa"
FEWEST_FUNCTIONS = 200


def readelf(what, program):
    run = subprocess.run(["readelf", "-W", what, program], capture_output=True, text=True, check=True)
    return run.stdout


def faults(program):
    header, segments = readelf("-h", program), readelf("-l", program)
    dynamic, symbols = readelf("-d", program), readelf("--dyn-syms", program)
    stack = re.search(r"GNU_STACK.*", segments)
    wanted = {
        "position independent (PIE)": re.search(r"Type:\s+DYN", header) and "FLAGS_1" in dynamic and "PIE" in dynamic,
        "read-only relocations (RELRO)": "GNU_RELRO" in segments,
        "bound at the start (NOW)": re.search(r"\bNOW\b", dynamic),
        "no executable stack": stack and "RWE" not in stack[0],
        "stack protector": "__stack_chk_fail" in symbols,
        "_FORTIFY_SOURCE": re.search(r"__\w+_chk@", symbols),
        "no folder to load libraries from": not re.search(r"R(UN)?PATH", dynamic),
    }
    if platform.machine() == "x86_64":
        # The C library's own start-up objects bear no mark of it, so that the linker leaves none on the whole: what
        # counts is that functions begin with a place that may be jumped to.
        wanted["control-flow protection (CET)"] = pathlib.Path(program).read_bytes().count(ENDBR64) > FEWEST_FUNCTIONS
    return [f"{program}: {what} is missing" for what, found in wanted.items() if not found]


def main():
    found = [fault for program in sys.argv[1:] for fault in faults(program)]
    print("\n".join(found))
    sys.exit(1 if found else 0)


main()
