#!/usr/bin/env python3
"""clang-tidy over every file of src/, and every header of src/ compiled alone.

Parsing Qt and the standard library again for each file would take most of the time, so parts of them are parsed once, as
precompiled headers ("starts"). A file begins with the largest start that holds nothing but what the file includes anyway:
one that leans on an include of somebody else's fails, as it would with no start at all. What passed is remembered by
all that it includes of ours, and not looked at again.

check_sources.py prepare|tidy|headers SOURCE BUILD"""
import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

CLANG = "19"
# No C++ modules: where they are on, clang-tidy reads each file a second time, to look into those that it meets.
LANGUAGE = ["-std=c++20", "-Xclang", "-fno-cxx-modules", "-fpch-instantiate-templates", "-fPIC"]
RECORD = ["QDateTime", "QList", "QRectF", "QStringList", "QUuid", "nlohmann/json.hpp", "array", "functional", "optional", "vector"]
SERVICE = [*RECORD, "QColor", "QFont", "QFuture", "QHash", "QImage", "QObject", "QThreadPool", "memory", "stop_token"]
STARTS = [["QString"], ["QObject", "QStringList"], ["QImage"], ["QWidget"], RECORD, SERVICE, [*SERVICE, "QPainter", "QWidget"]]
QUOTE = '"'
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.M)


@functools.cache
def includes(file):
    """The (bracket, name) pairs that a file asks for, whatever conditions they stand under."""
    return INCLUDE.findall(file.read_text(errors="replace"))


class Tree:
    def __init__(self, root, build):
        self.root, self.build, self.work = root, build, build / "sources"
        self.work.mkdir(exist_ok=True)
        self.sources = sorted((root / "src").rglob("*.cpp"))
        self.headers = sorted((root / "src").rglob("*.h"))
        self.flags = self.flags_of_all()
        self.folders = [pathlib.Path(self.flags[i + 1]) for i, flag in enumerate(self.flags) if flag == "-isystem"]
        self.folders += system_folders()

    def flags_of_all(self):
        """Every definition and include folder that any room is compiled with, in the order of first use."""
        found = {}
        for entry in json.loads((self.build / "compile_commands.json").read_text()):
            if any(pathlib.Path(entry["file"]).is_relative_to(folder / "src") for folder in (self.root, self.build)):
                words = iter(shlex.split(entry["command"]))
                for word in words:
                    if word == "-isystem":
                        found[(word, next(words))] = None
                    elif word.startswith(("-D", "-I")):
                        found[(word,)] = None
        return [word for words in found for word in words]

    @functools.cache
    def closure(self, file):
        """The files of ours that a file reads, itself included, and the names that these include from outside."""
        own, outside, waiting = {file}, set(), [file]
        while waiting:
            for bracket, name in includes(waiting.pop()):
                path = self.root / "src" / name
                if bracket == "<":
                    outside.add(name)
                elif path.is_file() and path not in own:
                    own.add(path)
                    waiting.append(path)
        return frozenset(own), frozenset(outside)

    @functools.cache
    def outside_file(self, name):
        return next((folder / name for folder in self.folders if (folder / name).is_file()), None)

    @functools.cache
    def behind(self, name):
        """All files from outside that an include of this name can read."""
        seen, waiting = set(), [self.outside_file(name)]
        while waiting:
            file = waiting.pop()
            if file is None or file in seen:
                continue
            seen.add(file)
            for _, other in includes(file):
                beside = file.parent / other
                waiting.append(beside if beside.is_file() else self.outside_file(other))
        return frozenset(map(self.meant, seen))

    @functools.cache
    def meant(self, file):
        """The header itself where a file only forwards to it, as QString does to qstring.h."""
        asked = includes(file)
        forwards = len(asked) == 1 and asked[0][0] == QUOTE and file.stat().st_size < 100
        return self.meant(file.parent / asked[0][1]) if forwards else file.resolve()

    @functools.cache
    def offered(self, file):
        """The names from outside that a start of this file may hold."""
        _, names = self.closure(file)
        readable = frozenset().union(*map(self.behind, names))
        return frozenset(name for name in self.every_name() if self.meant(self.outside_file(name)) in readable)

    @functools.cache
    def every_name(self):
        names = set().union(*(self.closure(file)[1] for file in self.sources + self.headers))
        # <cassert> and its like mean to be included more than once; C headers that wait for others cannot come first.
        return frozenset(name for name in names if self.outside_file(name) and not name.endswith(("assert", ".h")))

    def weight(self, names):
        return sum(file.stat().st_size for file in frozenset().union(*map(self.behind, names)))

    def prepare(self):
        jobs = [functools.partial(self.build_start, number, names) for number, names in enumerate(STARTS)]
        with concurrent.futures.ThreadPoolExecutor(2) as pool:
            for job in [pool.submit(job) for job in [*jobs, self.build_module]]:
                job.result()

    def newest(self, names):
        return max(file.stat().st_mtime for file in frozenset().union(*map(self.behind, names)))

    def build_start(self, number, names):
        """Made anew when flags or any header that it read have changed."""
        header, made = self.work / f"start{number}.h", self.work / f"start{number}.pch"
        text = "".join(f"#include <{name}>\n" for name in names) + f"// {self.flags} {LANGUAGE} {self.newest(names)}\n"
        if not made.exists() or header.read_text() != text:
            made.unlink(missing_ok=True)
            header.write_text(text)
            run([f"clang++-{CLANG}", *self.flags, *LANGUAGE, "-Wno-everything", "-x", "c++-header", header, "-o", made])

    def build_module(self):
        source, made = self.root / "tools" / "own_code.cpp", self.work / "own_code.so"
        if not made.exists() or made.stat().st_mtime < source.stat().st_mtime:
            folder = run([f"llvm-config-{CLANG}", "--includedir"]).strip()
            run([f"clang++-{CLANG}", "-std=c++17", "-fno-rtti", "-fPIC", "-shared", "-isystem", folder, source, "-o", made])

    def start_of(self, file):
        fitting = [number for number, names in enumerate(STARTS) if self.offered(file).issuperset(names)]
        largest = max(fitting, key=lambda number: self.weight(STARTS[number]), default=None)
        return [] if largest is None else ["-include-pch", self.work / f"start{largest}.pch"]

    def arguments(self, file):
        return [*self.flags, *LANGUAGE, "-Wno-everything", *self.start_of(file)]

    def tidy(self, file):
        module = ["-load", self.work / "own_code.so", "--checks=tarnovel-own-code,clang-diagnostic-shadow"]
        return ["clang-tidy-" + CLANG, *module, "--quiet", file, "--", *self.arguments(file), "-Wshadow"]

    def alone(self, file):
        return [f"clang++-{CLANG}", *self.arguments(file), "-fsyntax-only", "-x", "c++", file]

    def remembered(self, kind, file):
        key = hashlib.sha256(repr((kind, self.flags, LANGUAGE, CLANG)).encode())
        for read in [self.root / ".clang-tidy", *sorted(self.closure(file)[0])]:
            key.update(read.read_bytes())
        return self.work / f"{kind}-{file.parent.name}-{file.stem}-{key.hexdigest()[:24]}"

    def check(self, kind, file):
        stamp = self.remembered(kind, file)
        if stamp.exists():
            return ""
        command = self.tidy(file) if kind == "tidy" else self.alone(file)
        done = subprocess.run(list(map(str, command)), capture_output=True, text=True, preexec_fn=lambda: os.nice(5))
        if done.returncode == 0:
            stamp.touch()
            return ""
        return done.stdout + done.stderr


def run(command):
    done = subprocess.run(list(map(str, command)), capture_output=True, text=True)
    if done.returncode:
        sys.exit(done.stdout + done.stderr)
    return done.stdout


def system_folders():
    """Where the compiler itself looks, last of all."""
    told = subprocess.run([f"clang++-{CLANG}", "-E", "-v", "-x", "c++", "/dev/null"], capture_output=True, text=True).stderr
    listed = told.split("search starts here:\n")[-1].split("End of search list")[0]
    return [pathlib.Path(line.strip()) for line in listed.splitlines()]


def main():
    kind, tree = sys.argv[1], Tree(pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3]))
    if kind == "prepare":
        return tree.prepare()
    files = tree.sources if kind == "tidy" else tree.headers
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        faults = list(filter(None, pool.map(functools.partial(tree.check, kind), files)))
    print("\n".join(faults))
    print(f"{len(files)} files checked")
    sys.exit(1 if faults or not files else 0)


main()
