#!/usr/bin/env python3
"""Installs the built program into an empty folder, and checks that a desktop would find all of it."""
import pathlib
import re
import subprocess
import sys
import tempfile

ID = "io.github.tarnovel.Tarnovel"
INSTALLED = [
    "bin/tarnovel",
    f"share/applications/{ID}.desktop",
    f"share/metainfo/{ID}.metainfo.xml",
    f"share/dbus-1/services/{ID}.service",
    f"share/icons/hicolor/scalable/apps/{ID}.svg",
    f"share/icons/hicolor/symbolic/apps/{ID}-symbolic.svg",
    *(f"share/icons/hicolor/{size}x{size}/apps/{ID}.png" for size in (16, 24, 32, 48, 64, 128, 256, 512)),
    "share/bash-completion/completions/tarnovel",
    "share/zsh/vendor-completions/_tarnovel",
    "share/fish/vendor_completions.d/tarnovel.fish",
    *(f"share/man/{language}man1/tarnovel-export.1.gz" for language in ("", "fr/", "zh_CN/")),
    "share/doc/tarnovel/copyright",
    "share/doc/tarnovel/changelog.gz",
]


def main():
    build = sys.argv[1]
    faults = []
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(["cmake", "--install", build, "--prefix", folder], check=True, stdout=subprocess.DEVNULL)
        root = pathlib.Path(folder)
        faults += [f"{name} is not installed" for name in INSTALLED if not (root / name).is_file()]
        started = re.search(r"^Exec=(\S+)", (root / f"share/dbus-1/services/{ID}.service").read_text(), re.M)[1]
        if started != str(root / "bin/tarnovel"):
            faults.append(f"the bus would start {started}")
        for command in (
            ["desktop-file-validate", root / INSTALLED[1]],
            ["appstreamcli", "validate", "--no-net", root / INSTALLED[2]],
            [root / "bin/tarnovel", "--version"],
        ):
            run = subprocess.run(command, capture_output=True, text=True)
            # SingleMainWindow is of version 1.5 of the desktop entry, which Debian 12's validator does not know yet.
            said = [line for line in (run.stdout + run.stderr).splitlines() if '"SingleMainWindow"' not in line]
            if run.returncode and said:
                faults.append("\n".join(said))
        released = re.search(r'<release version="([^"]+)"', (root / INSTALLED[2]).read_text())[1]
        noted = re.search(r"^## (\S+)", (pathlib.Path(__file__).parents[1] / "CHANGELOG.md").read_text(), re.M)[1]
        version = subprocess.run([root / "bin/tarnovel", "-V"], capture_output=True, text=True).stdout.split()[-1]
        if len({released, noted, version}) > 1:
            faults.append(f"metainfo is at {released}, the changelog at {noted}, the program at {version}")
    print("\n".join(faults))
    sys.exit(1 if faults else 0)


main()
