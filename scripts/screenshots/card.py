#!/usr/bin/env python3
"""Draws the pictures of the card that scripts/screenshots.sh shows: landscapes with a date in each, and a broken one.

usage: card.py FOLDER
"""
import math
import pathlib
import random
import struct
import subprocess
import sys

PICTURES, BROKEN = 24, 11


def landscape(file: pathlib.Path, seed: int) -> None:
    dice = random.Random(seed)
    width, height = ((640, 480), (640, 426), (426, 640), (640, 480))[seed % 4]
    waves, horizon = dice.uniform(1, 3), height * dice.uniform(0.5, 0.65)
    hills = " ".join(f"{x},{horizon + height * 0.08 * math.sin(x / width * waves * 6.28 + seed):.0f}"
                     for x in range(0, width + 1, 10))
    sky = f"rgb({dice.randrange(80, 150)},{dice.randrange(150, 200)},{dice.randrange(210, 255)})"
    land = f"rgb({dice.randrange(40, 110)},{dice.randrange(100, 150)},{dice.randrange(40, 90)})"
    x, y, radius = width * dice.uniform(0.15, 0.85), horizon * 0.35, height * 0.06
    subprocess.run(["convert", "-size", f"{width}x{height}", f"gradient:{sky}-white",
                    "-fill", "rgb(250,220,120)", "-draw", f"circle {x:.0f},{y:.0f} {x + radius:.0f},{y:.0f}",
                    "-fill", land, "-draw", f"polygon 0,{height} {hills} {width},{height}",
                    "-quality", "90", str(file)], check=True)


def exif(taken: str) -> bytes:
    """A segment that contains only the time of the picture."""
    tiff = b"II*\0" + struct.pack("<I", 8) + struct.pack("<HHHIII", 1, 0x8769, 4, 1, 26, 0)
    tiff += struct.pack("<HHHIII", 1, 0x9003, 2, 20, 44, 0) + taken.encode() + b"\0"
    return b"\xff\xe1" + struct.pack(">H", len(tiff) + 8) + b"Exif\0\0" + tiff


def main() -> int:
    if len(sys.argv) != 2 or sys.argv[1].startswith("-"):
        print(__doc__)
        return 0 if sys.argv[1:] in (["-h"], ["--help"]) else 2
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True)
    for number in range(1, PICTURES + 1):
        file = folder / f"IMG_{number:04}.JPG"
        if number == BROKEN:
            file.write_bytes(b"no picture")
            continue
        landscape(file, number)
        jpeg = file.read_bytes()
        file.write_bytes(jpeg[:2] + exif(f"2026:11:{13 + number // 5:02} {9 + number % 9:02}:{number * 17 % 60:02}:00") + jpeg[2:])
    return 0


if __name__ == "__main__":
    sys.exit(main())
