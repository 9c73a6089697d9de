#!/usr/bin/python3
"""Makes samples/: six pictures with the capture metadata of realistic cameras.

    apt-get install python3-pil exiv2
    tools/make_samples.py FOLDER_WITH_THE_PICTURES

Pictures above the size limit are encoded anew, and the one whose camera was turned is stored lying on its side
with orientation 6. Only needed to change the samples; nothing else uses Pillow or the exiv2 command.
"""
import pathlib
import shutil
import subprocess
import sys

from PIL import Image

# Room for the metadata, which is written last, below 150 KB.
LONGEST_FILE = 147_000

UPRIGHT, TURNED = 1, 6

CAMERAS = {
    "boat": dict(make="FUJIFILM", model="X-T5", lens="XF50-140mmF2.8 R LM OIS WR", focal=(884, 10), focal35=133,
                 aperture=(56, 10), exposure=(1, 500), iso=125, date="2024:11:03 07:12:41", orientation=UPRIGHT),
    "tree": dict(make="NIKON CORPORATION", model="NIKON Z 6_2", lens="NIKKOR Z 24-70mm f/4 S", focal=(700, 10),
                 focal35=70, aperture=(8, 1), exposure=(1, 160), iso=100, date="2023:08:19 20:41:07",
                 orientation=UPRIGHT),
    "oranges": dict(make="LEICA CAMERA AG", model="LEICA M11", lens="Summicron-M 1:2/50", focal=(50, 1), focal35=50,
                    aperture=(4, 1), exposure=(1, 125), iso=200, date="2024:02:11 10:26:55", orientation=UPRIGHT),
    "stairs": dict(make="Canon", model="Canon EOS R6m2", lens="RF35mm F1.8 MACRO IS STM", focal=(35, 1), focal35=35,
                   aperture=(8, 1), exposure=(1, 640), iso=100, date="2024:06:22 11:05:18", orientation=UPRIGHT),
    "person": dict(make="SONY", model="ILCE-7M4", lens="FE 85mm F1.8", focal=(850, 10), focal35=85,
                   aperture=(18, 10), exposure=(1, 1000), iso=100, date="2023:10:01 18:22:30", orientation=UPRIGHT),
    "night": dict(make="OM Digital Solutions", model="OM-1", lens="OLYMPUS M.45mm F1.2", focal=(45, 1), focal35=90,
                  aperture=(12, 10), exposure=(1, 100), iso=1600, date="2024:12:07 19:48:03", orientation=TURNED),
}


def store(source, goal, orientation):
    if orientation == UPRIGHT and source.stat().st_size <= LONGEST_FILE:
        shutil.copyfile(source, goal)
        return
    image = Image.open(source)
    if orientation == TURNED:
        # A viewer turns the stored picture a quarter clockwise, so it is stored turned the other way.
        image = image.transpose(Image.Transpose.ROTATE_90)
    for quality in range(95, 49, -1):
        image.save(goal, quality=quality, optimize=True, subsampling="4:2:0")
        if goal.stat().st_size <= LONGEST_FILE:
            return
    sys.exit(f"{source}: no quality makes it small enough")


def write_metadata(goal, camera):
    ratio = "{0[0]}/{0[1]}".format
    fields = [
        ("Image.Make", "Ascii", camera["make"]),
        ("Image.Model", "Ascii", camera["model"]),
        ("Image.Orientation", "Short", camera["orientation"]),
        ("Image.DateTime", "Ascii", camera["date"]),
        ("Photo.DateTimeOriginal", "Ascii", camera["date"]),
        ("Photo.DateTimeDigitized", "Ascii", camera["date"]),
        ("Photo.ExposureTime", "Rational", ratio(camera["exposure"])),
        ("Photo.FNumber", "Rational", ratio(camera["aperture"])),
        ("Photo.ISOSpeedRatings", "Short", camera["iso"]),
        ("Photo.FocalLength", "Rational", ratio(camera["focal"])),
        ("Photo.FocalLengthIn35mmFilm", "Short", camera["focal35"]),
        ("Photo.LensModel", "Ascii", camera["lens"]),
        ("Photo.ColorSpace", "Short", 1),
    ]
    commands = [f"-Mset Exif.{key} {kind} {value}" for key, kind, value in fields]
    subprocess.run(["exiv2", *commands, "modify", str(goal)], check=True)


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    samples = pathlib.Path(__file__).resolve().parent.parent / "samples"
    samples.mkdir(exist_ok=True)
    for name, camera in CAMERAS.items():
        goal = samples / f"{name}.jpg"
        store(pathlib.Path(sys.argv[1]) / f"{name}.jpg", goal, camera["orientation"])
        write_metadata(goal, camera)
        print(goal.name, goal.stat().st_size)


main()
