#!/usr/bin/env python3
"""Checks the built binaries: the DLL exports the listed interface and nothing else, and every program and DLL of ours
is linked with ASLR, high-entropy addresses and DEP.

usage: binaries.py EXPORTS-LIST FOLDER-WITH-PROGRAMS
"""
import pathlib
import re
import subprocess
import sys

OBJDUMP = "x86_64-w64-mingw32-objdump"
RUNTIME = {"libstdc++-6.dll", "libgcc_s_seh-1.dll", "libwinpthread-1.dll"}  # Debian's build
# winnt.h: IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA, _DYNAMIC_BASE, _NX_COMPAT
HARDENED = 0x0020 | 0x0040 | 0x0100


def headers(file: pathlib.Path) -> str:
    return subprocess.run([OBJDUMP, "-p", file], check=True, capture_output=True, text=True).stdout


def exports(text: str) -> list[str]:
    table = text.partition("[Ordinal/Name Pointer] Table")[2].partition("\n\n")[0]
    return re.findall(r"\]\s+(?:\+base\[\s*\d+\]\s+\S+\s+)?(\S+)$", table, re.MULTILINE)


def main() -> int:
    listed = [line for line in pathlib.Path(sys.argv[1]).read_text().splitlines() if line and line[0] != "#"]
    folder = pathlib.Path(sys.argv[2])
    wrong = []

    exported = exports(headers(folder / "kestraboot.dll"))
    wrong += [f"kestraboot.dll exports {name}, which is not listed" for name in exported if name not in listed]
    wrong += [f"kestraboot.dll does not export {name}" for name in listed if name not in exported]

    files = [f for f in sorted(folder.iterdir()) if f.suffix in {".exe", ".dll", ".mox"} and f.name not in RUNTIME]
    for file in files:
        found = re.search(r"^DllCharacteristics\s+([0-9a-f]+)$", headers(file), re.MULTILINE)
        flags = int(found.group(1), 16) if found else 0
        if flags & HARDENED != HARDENED:
            wrong.append(f"{file.name} is linked without hardening (DLL characteristics {flags:#06x})")

    print(f"binaries: {len(exported)} exports, {len(files)} files, {len(wrong)} wrong")
    print("\n".join(wrong))
    return 1 if wrong or not exported else 0


if __name__ == "__main__":
    sys.exit(main())
