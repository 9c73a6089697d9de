#!/usr/bin/env python3
"""Holds help, manual pages and completion together, and all of them to the options that scripts rely on:
check_manuals.py TARNOVEL MANUALS"""
import gzip
import pathlib
import re
import shutil
import subprocess
import sys

# Options that have been published and may not go.
PROMISED = {
    "": "--help -h --version -V",
    "export": "-o --output -t --template --style --set --text --background --logo --signature --size --format --max-mb "
              "--language --json -q --quiet -v --verbose --session -j --jobs -r --recursive --files-from -0 --shard --name "
              "--skip-existing --dry-run",
    "watch": "-o --output -r --recursive -t --template --style --set --text --background --logo --signature --size --format "
             "--max-mb --name --skip-existing -j --jobs --json -q --quiet",
    "inspect": "--json",
    "fields": "--json",
    "templates": "--json",
    "stocks": "--json",
    "layouts": "--json",
    "collage": "-o --output --layout --aspect --gap --margin --radius --background --frame --pan --zoom --ratio --stock "
               "--edge-text --start-number --no-numbers --format --max-mb --json --size -q --quiet",
}
OPTION = r"(?<![\w-])(--?[A-Za-z0-9][\w-]*)"


def said(*command, **more):
    return subprocess.run(list(map(str, command)), capture_output=True, text=True, **more)


def in_help(program, command):
    text = said(program, *command.split(), "--help", "--language", "en").stdout
    rows = re.findall(r"^  (-[^ ].*?)(?:  |$)", text, re.M)
    return {option for row in rows for option in re.findall(OPTION, row)}


def in_manual(folder, command):
    page = gzip.open(folder / "man" / "man1" / f"tarnovel{'-' if command else ''}{command}.1.gz", "rt").read()
    options = page.split(".SH OPTIONS")[1].split(".SH")[0]
    tags = re.findall(r"^\.TP\n(.*)", options, re.M)
    return {option for tag in tags for option in re.findall(OPTION, re.sub(r"\\fI.*?\\fR", "", tag.replace("\\-", "-")).replace("\\fB", " "))}


def in_bash(folder, command):
    text = (folder / "completion" / "tarnovel").read_text()
    body = re.search(rf"^_tarnovel_{command or 'program'}\(\)\n(.*?)^}}", text, re.M | re.S)[1]
    return set(re.search(r"compgen -W '([^']*)'", body)[1].split())


def in_zsh(folder, command):
    text = (folder / "completion" / "_tarnovel").read_text()
    body = re.search(rf"^        {command}\)\n(.*?);;", text, re.M | re.S)[1] if command else text.split("case $state")[0]
    return set(re.findall(r"^\s+'(?:\*|\([^)]*\))(--?[\w-]+)\[", body, re.M))


def in_fish(folder, command):
    text = (folder / "completion" / "tarnovel.fish").read_text()
    condition = f"'__fish_seen_subcommand_from {command}'" if command else "'not __fish_seen_subcommand_from "
    rows = [line.split(" -d ")[0] for line in text.splitlines() if f"-n {condition}" in line]
    return {("--" if kind == "l" else "-") + name for row in rows for kind, name in re.findall(r" -([ls]) ([\w-]+)", row)}


def pressed(folder, line):
    """What bash offers when Tab is pressed at the end of a line."""
    script = f"""source {folder}/completion/tarnovel
COMP_WORDS=({line}) COMP_CWORD=$((${{#COMP_WORDS[@]}} - 1))
compopt() {{ :; }}
_tarnovel; printf '%s\\n' "${{COMPREPLY[@]}}" """
    return set(said("bash", "-c", script).stdout.split("\n")) - {""}


def main():
    program, folder, faults = sys.argv[1], pathlib.Path(sys.argv[2]), []
    for command, promised in PROMISED.items():
        known = in_help(program, command)
        if missing := set(promised.split()) - known:
            faults.append(f"{command or 'tarnovel'}: {' '.join(sorted(missing))} is gone from the help")
        for where, find in (("manual", in_manual), ("bash", in_bash), ("zsh", in_zsh), ("fish", in_fish)):
            if found := find(folder, command) ^ known:
                faults.append(f"{command or 'tarnovel'}: {where} and help differ by {' '.join(sorted(found))}")
    for language, heading in (("fr", "COMMANDES"), ("zh_CN", "命令")):
        page = gzip.open(folder / "man" / language / "man1" / "tarnovel.1.gz", "rt", encoding="utf-8").read()
        if f".SH {heading}" not in page and f'.SH "{heading}"' not in page:
            faults.append(f"{language}: the manual does not speak the language of its folder")
    listed = set(re.findall(r"^  ([a-z]+)  ", said(program, "--help", "--language", "en").stdout, re.M))
    if listed != pressed(folder, "tarnovel ''") & listed or not listed >= set(PROMISED) - {""}:
        faults.append(f"commands: {listed}")
    templates = {line.split()[0] for line in said(program, "templates").stdout.splitlines()}
    for line, wanted in (("tarnovel export --template ''", templates), ("tarnovel export --template ge", {"gear"}),
                         ("tarnovel collage --layout filmst", {"filmstrip"}),
                         ("tarnovel collage --stock 'Kodak Tri'", {r"Kodak\ Tri-X\ 400"})):
        if not wanted or pressed(folder, line) != wanted:
            faults.append(f"{line}: offers {pressed(folder, line)}")
    for page in sorted(folder.glob("man/**/*.gz")):
        troff = said("groff", "-Kutf8", "-man", "-Tutf8", "-ww", "-z", input=gzip.open(page, "rt").read())
        if troff.stderr:
            faults.append(f"{page}: {troff.stderr}")
    for shell, file in (("bash", "tarnovel"), ("zsh", "_tarnovel"), ("fish", "tarnovel.fish")):
        run = said(shell, "-n", folder / "completion" / file) if shutil.which(shell) else None
        if run and run.returncode:
            faults.append(f"{shell}: {run.stderr}")
    print("\n".join(faults))
    sys.exit(1 if faults else 0)


main()
