#!/usr/bin/env python3
"""What is easily forgotten: formatting, file length, stray files, left-over markers."""
import pathlib
import re
import subprocess
import sys

LONGEST_FILE = 600
STRAY = re.compile(r"(\.(orig|rej|swp|o|tmp)|~)$")


def tracked(root):
    listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=root, capture_output=True, text=True)
    return [root / name for name in listed.stdout.splitlines() if (root / name).is_file()]


def types_defined_twice(headers):
    """Two types of one name in one namespace are undefined behaviour that no compiler of single files sees."""
    where = {}
    for header in headers:
        text = header.read_text()
        namespace = re.search(r"^namespace ([\w:]+) \{", text, re.M)
        for name in re.findall(r"^(?:class|struct|enum class) (\w+)(?: final)?(?: : [^;{]*)?\s*\{", text, re.M):
            where.setdefault((namespace.group(1) if namespace else "", name), []).append(header)
    return [f"{name} is defined in {' and '.join(map(str, files))}" for (_, name), files in where.items() if len(files) > 1]


def main():
    root = pathlib.Path(sys.argv[1])
    files = tracked(root)
    code = [file for file in files if file.suffix in (".h", ".cpp")]
    faults = [f"{file}: stray file" for file in files if STRAY.search(file.name)]
    for file in code:
        text = file.read_text()
        if len(text.splitlines()) > LONGEST_FILE:
            faults.append(f"{file}: over {LONGEST_FILE} lines")
        faults += [f"{file}: {marker}" for marker in ("TODO", "FIXME") if marker in text]
        if file.suffix == ".h" and "#pragma once" not in text:
            faults.append(f"{file}: no #pragma once")
    faults += types_defined_twice([file for file in code if file.suffix == ".h" and "src" in file.relative_to(root).parts])
    format_run = subprocess.run(["clang-format", "--dry-run", "--Werror", *map(str, code)], capture_output=True, text=True)
    if format_run.returncode:
        faults += [line for line in format_run.stderr.splitlines() if "error:" in line]
    print("\n".join(faults))
    print(f"{len(code)} code files checked")
    sys.exit(1 if faults or not code else 0)


main()
