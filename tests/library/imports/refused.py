#!/usr/bin/env python3
"""Checks that the check of imports refuses a binary with an import that is too young, one with an import that is not
in the table, and one that requires a subsystem version that Vista does not have.

usage: refused.py CHECK TABLE TOO-YOUNG-BINARY FOLDER-FOR-CHANGED-COPIES
"""
import pathlib
import struct
import subprocess
import sys


def run(check: str, table: str, *files: pathlib.Path) -> tuple[int, list[str]]:
    done = subprocess.run([sys.executable, check, table, *map(str, files)], capture_output=True, text=True)
    return done.returncode, done.stdout.splitlines()


def with_subsystem(program: bytes, major: int, minor: int) -> bytes:
    at = struct.unpack_from("<I", program, 0x3C)[0] + 24 + 48
    return program[:at] + struct.pack("<HH", major, minor) + program[at + 4:]


def main() -> int:
    check, table = sys.argv[1:3]
    planted = pathlib.Path(sys.argv[3])
    folder = pathlib.Path(sys.argv[4])
    folder.mkdir(parents=True, exist_ok=True)
    too_late = folder / "asks_for_7.dll"
    too_late.write_bytes(with_subsystem(planted.read_bytes(), 6, 1))
    # The table without the rows for those two functions, and with both as if Vista had them.
    rows = pathlib.Path(table).read_text()
    lenient = folder / "lenient.txt"
    lenient.write_text(rows.replace("GetSystemTimePreciseAsFileTime 8", "GetSystemTimePreciseAsFileTime Vista")
                       + "kernel32.dll SetProcessWorkingSetSize XP-x64 page\n")

    young = (f"{planted.name} imports GetSystemTimePreciseAsFileTime of kernel32.dll, "
             "which Windows has since 8")
    unlisted = f"{planted.name} imports SetProcessWorkingSetSize of kernel32.dll, which is not in imports.txt"
    expected = {
        "too young and not listed": (run(check, table, planted), 1, {young, unlisted}),
        "the same, allowed": (run(check, str(lenient), planted), 0, set()),
        "subsystem": (run(check, str(lenient), too_late), 1, {"asks_for_7.dll requires subsystem 6.1"}),
    }
    wrong = 0
    for what, ((status, lines), wanted_status, wanted) in expected.items():
        said = set(lines[lines.index(next(line for line in lines if line.startswith("imports:"))) + 1:]) - {""}
        if (status, said) != (wanted_status, wanted):
            print(f"{what}: exit code {status}, printed {sorted(said)}")
            wrong += 1
    print(f"refused imports: {len(expected)} cases, {wrong} wrong")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
