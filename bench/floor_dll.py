#!/usr/bin/env python3
"""Writes the source of a DLL with the imports and the size of another DLL.

usage: floor_dll.py OUTPUT DLL [UNPADDED]     UNPADDED: a DLL with those imports that is still too small
"""
import pathlib
import re
import subprocess
import sys

OBJDUMP = "x86_64-w64-mingw32-objdump"
PADDED = {".text": '.text, "xr"', ".rdata": '.rdata, "dr"'}


def run(*options: str) -> str:
    return subprocess.run([OBJDUMP, *options], check=True, capture_output=True, text=True).stdout


def imports(dll: str) -> list[str]:
    table = run("-p", dll).partition("The Import Tables")[2].partition("\n\nThe ")[0]
    return re.findall(r"^\t[0-9a-f]+\s+\d+\s+(\S+)$", table, re.MULTILINE)


def sizes(dll: str) -> dict[str, int]:
    return {name: int(size, 16) for name, size in re.findall(r"^\s*\d+ (\.\S+)\s+([0-9a-f]{8})", run("-h", dll), re.MULTILINE)}


def main() -> int:
    output, dll = sys.argv[1:3]
    lines = ["    .text", "    .globl KeepImports", "KeepImports:"]
    lines += [f"    movq __imp_{name}(%rip), %rax" for name in imports(dll)]
    lines += ["    ret"]
    if len(sys.argv) > 3:
        wanted, present = sizes(dll), sizes(sys.argv[3])
        for section, directive in PADDED.items():
            lines += [f"    .section {directive}", f"    .space {max(0, wanted[section] - present[section])}, 1"]
    lines += ["    .text"]  # in which the compiler continues, with files that it compiles together with this one
    pathlib.Path(output).write_text("\n".join(['asm(R"(', *lines, ')");']) + "\n")
    return 0


if __name__ == "__main__":
    sys.exit(main())
