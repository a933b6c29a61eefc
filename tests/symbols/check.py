#!/usr/bin/env python3
"""Compares each shipped binary with the file that keeps its debug information, then crashes inside the library and
turns the address of the stripped DLL into function, file and line.

    check.py OBJDUMP ADDR2LINE SYMBOLS-FOLDER SOURCE-FOLDER WINE-PREFIX CRASHING-PROGRAM BINARY ...
"""
import pathlib
import re
import subprocess
import sys

objdump, addr2line, symbols, source, prefix, crashing, *binaries = sys.argv[1:]
failures = []


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True, timeout=90).stdout


def sections(path):
    return set(re.findall(r"^ +\d+ (\S+)", output(objdump, "-h", path), re.MULTILINE))


def build_identifier(path):
    """The GUID after "RSDS" in the CodeView record that the linker wrote."""
    data = pathlib.Path(path).read_bytes()
    found = [data[at.end():at.end() + 16] for at in re.finditer(b"RSDS", data)]
    return found[0] if len(found) == 1 else None


if not binaries:
    failures.append("no binary was named")
for binary in map(pathlib.Path, binaries):
    kept = pathlib.Path(symbols) / (binary.name + ".debug")
    if [name for name in sections(binary) if name.startswith(".debug")]:
        failures.append(f"{binary.name} still holds debug information")
    if ".debug_info" not in sections(kept):
        failures.append(f"{kept.name} holds no debug information")
    if kept.name.encode() not in binary.read_bytes():
        failures.append(f"{binary.name} does not name {kept.name}")
    if not build_identifier(binary) or build_identifier(binary) != build_identifier(kept):
        failures.append(f"{binary.name} and {kept.name} are of different builds")

report = output(f"{source}/scripts/test-prefix.sh", "run", prefix, "60", crashing).strip()
print("the crash report:", report)
offset = re.fullmatch(r"C0000005 kestraboot\.dll\+(0x[0-9a-f]+)", report)
if not offset:
    failures.append("the program did not crash inside the library")
else:
    library = next(binary for binary in binaries if binary.endswith("kestraboot.dll"))
    base = int(re.search(r"^ImageBase\s+([0-9a-f]+)", output(objdump, "-p", library), re.MULTILINE)[1], 16)
    address = hex(base + int(offset[1], 16))
    frames = output(addr2line, "-e", f"{symbols}/kestraboot.dll.debug", "-f", "-C", "-i", address)
    print(frames, end="")
    place = re.search(r"^CKestraBootCommandHandler::LaunchKestra\(.*\)\n\S*launcher/launch_command\.cpp:(\d+)", frames,
                      re.MULTILINE)
    if not place:
        failures.append("the address does not lead to LaunchKestra")
    else:
        line = pathlib.Path(source, "launcher/launch_command.cpp").read_text().splitlines()[int(place[1]) - 1]
        print("the line:", line.strip())
        if "mode" not in line:
            failures.append("that line does not read the mode")

print("\n".join(failures) or f"{len(binaries)} binaries, each with its debug information")
sys.exit(1 if failures else 0)
