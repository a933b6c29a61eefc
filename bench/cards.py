#!/usr/bin/env python3
"""Creates the folders that the rows use as cards; existing ones are unchanged.

usage: cards.py FOLDER KIND FILES     KIND: walk (no picture, depth 4) or search (one picture in DCIM/100TEST)
"""
import pathlib
import shutil
import sys

FILES_IN_A_FOLDER = 100


def folders(kind: str, count: int):
    """The folders of the files, with `FILES_IN_A_FOLDER` files in each."""
    for i in range(count):
        if kind == "walk":  # the leaves of a tree of four levels, including the root
            yield f"AREA{i % 10}/ROLL{i // 10 % 10}/PART{i // 100:03}"
        else:  # beside the pictures, on the levels that are listed before them
            yield f"MISC{i:03}" if i % 2 == 0 else f"PRIVATE/AREA{i:03}"


def main() -> int:
    card, kind, files = pathlib.Path(sys.argv[1]), sys.argv[2], int(sys.argv[3])
    if card.is_dir():
        return 0
    making = card.with_name(card.name + ".new")
    shutil.rmtree(making, ignore_errors=True)
    for index, folder in enumerate(folders(kind, files // FILES_IN_A_FOLDER)):
        (making / folder).mkdir(parents=True)
        for number in range(FILES_IN_A_FOLDER):
            (making / folder / f"NOTE{index:04}_{number:02}.TXT").touch()
    if kind == "search":
        (making / "DCIM/100TEST").mkdir(parents=True)
        (making / "DCIM/100TEST/IMG_0001.JPG").write_text("picture")
    making.rename(card)
    return 0


if __name__ == "__main__":
    sys.exit(main())
