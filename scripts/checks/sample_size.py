#!/usr/bin/env python3
"""Checks that no source file of the samples has more than 150 lines: a reader of a sample takes in one concept at a time.

usage: sample_size.py [FOLDER]     default: samples/ of these sources
"""
import pathlib
import sys

FOLDER = pathlib.Path(sys.argv[1]) if sys.argv[1:] else pathlib.Path(__file__).resolve().parents[2] / "samples"
MOST = 150


def main() -> int:
    sizes = {file: len(file.read_text(encoding="utf-8").splitlines()) for file in sorted(FOLDER.rglob("*"))
             if file.suffix in {".cpp", ".h"}}
    wrong = [f"{file.relative_to(FOLDER)} has {size} lines, more than {MOST}" for file, size in sizes.items() if size > MOST]
    print(f"size of the samples: {len(sizes)} files, {len(wrong)} wrong")
    print("\n".join(wrong))
    return 1 if wrong or not sizes else 0


if __name__ == "__main__":
    sys.exit(main())
