#!/usr/bin/env python3
"""Installs the built program into an empty folder, and checks that a desktop would find all of it."""
import pathlib
import subprocess
import sys
import tempfile

ID = "io.github.tarnovel.Tarnovel"
INSTALLED = [
    "bin/tarnovel",
    f"share/applications/{ID}.desktop",
    f"share/metainfo/{ID}.metainfo.xml",
    f"share/icons/hicolor/scalable/apps/{ID}.svg",
    *(f"share/icons/hicolor/{size}x{size}/apps/{ID}.png" for size in (16, 24, 32, 48, 64, 128, 256, 512)),
]


def main():
    build = sys.argv[1]
    faults = []
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(["cmake", "--install", build, "--prefix", folder], check=True, stdout=subprocess.DEVNULL)
        root = pathlib.Path(folder)
        faults += [f"{name} is not installed" for name in INSTALLED if not (root / name).is_file()]
        for command in (
            ["desktop-file-validate", root / INSTALLED[1]],
            ["appstreamcli", "validate", "--no-net", root / INSTALLED[2]],
            [root / "bin/tarnovel", "--version"],
        ):
            run = subprocess.run(command, capture_output=True, text=True)
            if run.returncode:
                faults.append(run.stdout + run.stderr)
    print("\n".join(faults))
    sys.exit(1 if faults else 0)


main()
