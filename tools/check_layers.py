#!/usr/bin/env python3
"""Fails when a file of src/ includes what its layer's line in src/CMakeLists.txt does not allow."""
import pathlib
import re
import sys

# Headers whose module is not told by their name; everything else that starts with Q is looked up in the
# include folder of the Qt modules that the layer names.
QT_INCLUDE = [pathlib.Path("/usr/include/x86_64-linux-gnu/qt6"), pathlib.Path("/usr/include/aarch64-linux-gnu/qt6"),
              pathlib.Path("/usr/include/qt6")]
STANDARD = re.compile(r"^[a-z_0-9]+$|^(c?std[a-z]+|unistd|pthread|fcntl|signal|sys/\w+|linux/\w+|emmintrin|immintrin|errno|malloc|poll|sched|spawn)\.h$")
WHOLE_MODULE = re.compile(r"^Qt(Core|Gui|Widgets|Concurrent|Network|Svg|DBus)(/Qt\1)?$")


def qt_modules(header):
    """The Qt modules that offer this header."""
    found = set()
    for root in QT_INCLUDE:
        found.update(path.parent.name.removeprefix("Qt") for path in root.glob(f"Qt*/{header}"))
    return found


def complaint(include, quoted, layer, allowed):
    uses, qt, outside = allowed
    if quoted:
        room = include.split("/")[0]
        if "/" not in include:
            return "name the room: src/ is the one include root"
        return None if room == layer or room in uses else f"{layer} may not use {room}"
    if WHOLE_MODULE.match(include):
        return "whole-module include"
    if any(re.match(pattern, include) for pattern in outside):
        return None
    name = include
    if "/" in include and include.startswith("Qt"):
        module, name = include.removeprefix("Qt").split("/", 1)
        return None if module in qt else f"{layer} may not use Qt {module}"
    if name.startswith("Q") or name.startswith("q"):
        modules = qt_modules(name)
        if modules:
            return None if modules & set(qt) else f"{layer} may not use Qt {'/'.join(sorted(modules))}"
    return None if STANDARD.match(include) else f"{layer} may not use <{include}>"


def main():
    root, table = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    rows = [line.split("|") for line in table.read_text().splitlines()]
    layers = {row[0]: [list(filter(None, field.split(","))) for field in row[1:]] for row in rows}
    faults, checked = [], 0
    for folder in sorted(path for path in (root / "src").iterdir() if path.is_dir()):
        for file in sorted([*folder.rglob("*.h"), *folder.rglob("*.cpp")]):
            if folder.name not in layers:
                faults.append(f"{file}: folder without a tarnovel_layer line")
                continue
            checked += 1
            for number, line in enumerate(file.read_text().splitlines(), 1):
                match = re.match(r'\s*#\s*include\s*([<"])([^>"]+)[>"]', line)
                if match:
                    fault = complaint(match[2], match[1] == '"', folder.name, layers[folder.name])
                    if fault:
                        faults.append(f"{file}:{number}: {match[2]}: {fault}")
    print("\n".join(faults))
    if checked == 0:
        print("no file checked")
    sys.exit(1 if faults or checked == 0 else 0)


main()
