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
    def readable(self, name, wanted):
        """Whether an include of one name from outside brings another."""
        return self.meant(self.outside_file(wanted)) in self.behind(name)

    def offers(self, file, names):
        """Whether a start of this file may hold these names from outside: all of them are read by it anyhow."""
        asked = self.closure(file)[1]
        return all(wanted in asked or any(self.readable(name, wanted) for name in asked) for wanted in names)

    @functools.cache
    def weight(self, number):
        names = STARTS[number]
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
        """The heaviest start that holds nothing but what the file reads anyhow, by its number; none fits some files."""
        return self.plan[str(file.relative_to(self.root))]

    @functools.cached_property
    def plan(self):
        """Where each file begins. Working it out reads every header of the libraries, so the answer is kept."""
        asked = [(str(file), includes(file)) for file in self.sources + self.headers]
        key = hashlib.sha256(repr((asked, self.flags, STARTS, [self.newest(names) for names in STARTS])).encode())
        kept = self.work / f"plan-{key.hexdigest()[:24]}.json"
        if not kept.exists():
            plan = {str(file.relative_to(self.root)): self.heaviest(file) for file in self.sources + self.headers}
            kept.write_text(json.dumps(plan))
        return json.loads(kept.read_text())

    def heaviest(self, file):
        fitting = [number for number, names in enumerate(STARTS) if self.offers(file, names)]
        return max(fitting, key=self.weight, default=None)

    def arguments(self, file):
        start = self.start_of(file)
        given = [] if start is None else ["-include-pch", self.work / f"start{start}.pch"]
        return [*self.flags, *LANGUAGE, "-Wno-everything", *given]

    def shown_by_source(self, header):
        """Whether tidy, where it passes, has shown that this header compiles alone: its source includes it before
        anything else, and begins with the start that the header itself would have."""
        source = header.with_suffix(".cpp")
        if not source.is_file():
            return False
        first = next(iter(includes(source)), None)
        return first == (QUOTE, str(header.relative_to(self.root / "src"))) and \
            self.start_of(source) == self.start_of(header)

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
    files = tree.sources if kind == "tidy" else [file for file in tree.headers if not tree.shown_by_source(file)]
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        faults = list(filter(None, pool.map(functools.partial(tree.check, kind), files)))
    print("\n".join(faults))
    print(f"{len(files)} files checked")
    sys.exit(1 if faults or not files else 0)


main()
