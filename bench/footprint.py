#!/usr/bin/env python3
"""Prints the sizes of DLLs as lines of a table. If a build keeps a DLL's symbols in a separate file
(cmake/Symbols.cmake), they are read from that file.

usage: footprint.py NAME=DLL ...
"""
import pathlib
import re
import subprocess
import sys
import tempfile

PREFIX = "x86_64-w64-mingw32-"
HEAD = ["| DLL | file | stripped | code | read-only data | unwinding tables | imports | relocations | of them at load by the runtime |",
        "|---|---|---|---|---|---|---|---|---|"]


def run(tool: str, *options: str) -> str:
    return subprocess.run([PREFIX + tool, *options], check=True, capture_output=True, text=True).stdout


def size(file: str) -> int:
    with open(file, "rb") as opened:
        return opened.seek(0, 2)


def names(dll: str) -> str:
    apart = pathlib.Path(dll).resolve().parents[1] / "symbols" / (pathlib.Path(dll).name + ".debug")
    symbols = run("nm", str(apart) if apart.exists() else dll)
    if not symbols:
        raise SystemExit(f"footprint: no symbols of {dll}")
    return symbols


def line(name: str, dll: str) -> str:
    sections = {s: int(n, 16) for s, n in re.findall(r"^\s*\d+ (\.\S+)\s+([0-9a-f]{8})", run("objdump", "-h", dll),
                                                     re.MULTILINE)}
    headers = run("objdump", "-p", dll)
    imports = re.findall(r"^\t[0-9a-f]+\s+\d+\s+\S+$",
                         headers.partition("The Import Tables")[2].partition("\n\nThe ")[0], re.MULTILINE)
    # Addresses of the runtime's data that the linker cannot fill in: 12 bytes each behind a head of 12.
    marks = dict((mark, int(at, 16)) for at, mark in re.findall(
        r"^([0-9a-f]+) R __RUNTIME_PSEUDO_RELOC_LIST(_END)?__$", names(dll), re.MULTILINE))
    pseudo = max(0, (marks.get("_END", 0) - marks.get("", 0)) // 12 - 1)
    with tempfile.NamedTemporaryFile() as stripped:
        run("strip", "-o", stripped.name, dll)
        bare = size(stripped.name)
    return (f"| {name} | {size(dll):,} | {bare:,} | {sections['.text']:,} | {sections['.rdata']:,} "
            f"| {sections['.pdata'] + sections['.xdata']:,} "
            f"| {len(imports)} "
            f"| {headers.count('DIR64') + pseudo} | {pseudo} |")


def table(dlls: dict[str, str]) -> list[str]:
    return HEAD + [line(name, dll) for name, dll in dlls.items()]


if __name__ == "__main__":
    print("\n".join(table(dict(argument.split("=", 1) for argument in sys.argv[1:]))))
