#!/usr/bin/env python3
"""Checks that Windows Vista's loader accepts the shipped binaries. The table must list each function that a binary imports
by name, with the first Windows that has it, and none may be newer than Vista. No binary may require a newer subsystem.

usage: imports.py [--list] TABLE FILE ...      imports from another FILE of the list are not Windows'
"""
import fnmatch
import pathlib
import struct
import sys

RELEASES = ["XP-x64", "Vista", "7", "8", "8.1", "10"]  # of 64-bit Windows, from the oldest
OLDEST = "Vista"
OLDEST_SUBSYSTEM = (6, 0)  # Vista's own version
IMPORTS, DELAYED_IMPORTS = 1, 13  # winnt.h: IMAGE_DIRECTORY_ENTRY_IMPORT, _DELAY_IMPORT
BY_ORDINAL = 1 << 63


class Binary:
    """The parts of a 64-bit program or library that the loader reads."""

    def __init__(self, file: pathlib.Path):
        self.data = file.read_bytes()
        header = self.number("<I", 0x3C)
        if self.data[:2] != b"MZ" or self.data[header:header + 4] != b"PE\0\0":
            raise ValueError(f"{file} is no program")
        optional = header + 24
        if self.number("<H", optional) != 0x20B:
            raise ValueError(f"{file} is no 64-bit program")
        self.subsystem = (self.number("<H", optional + 48), self.number("<H", optional + 50))
        self.directories = optional + 112
        sections = optional + self.number("<H", header + 20)
        self.sections = [
            struct.unpack_from("<III", self.data, sections + 40 * i + 12)
            for i in range(self.number("<H", header + 6))
        ]

    def number(self, kind: str, offset: int) -> int:
        return struct.unpack_from(kind, self.data, offset)[0]

    def offset(self, address: int) -> int:
        for start, size, raw in self.sections:
            if start <= address < start + size:
                return raw + address - start
        raise ValueError(f"address {address:#x} is in no section")

    def text(self, address: int) -> str:
        start = self.offset(address)
        return self.data[start:self.data.index(0, start)].decode("ascii")

    def imports(self) -> set[tuple[str, str]]:
        """The pair (library in lower case, function) of each import; a function without a name is #NUMBER."""
        # For a record of each kind: its size, and the offsets of the library's name and of the list of functions.
        found = set()
        for entry, size, name_at, names_at in ((IMPORTS, 20, 12, 0), (DELAYED_IMPORTS, 32, 4, 16)):
            address = self.number("<I", self.directories + 8 * entry)
            at = self.offset(address) if address else 0
            while at and (name := self.number("<I", at + name_at)):
                found |= self.functions(self.text(name).lower(), self.number("<I", at + names_at))
                at += size
        return found

    def functions(self, library: str, names: int) -> set[tuple[str, str]]:
        found = set()
        at = self.offset(names)
        while function := self.number("<Q", at):
            found.add((library, f"#{function & 0xFFFF}" if function & BY_ORDINAL else self.text(function + 2)))
            at += 8
        return found


def read_table(table: pathlib.Path) -> dict[tuple[str, str], str]:
    rows = {}
    for number, line in enumerate(table.read_text().splitlines(), 1):
        if not line or line.startswith("#"):
            continue
        library, function, first, _source = line.split()
        if first not in RELEASES or (library, function) in rows:
            raise ValueError(f"{table}:{number}: {line}")
        rows[library, function] = first
    return rows


def first_windows(rows: dict[tuple[str, str], str], library: str, function: str) -> str | None:
    if (library, function) in rows:
        return rows[library, function]
    return next((first for (pattern, every), first in rows.items()
                 if every == "*" and fnmatch.fnmatchcase(library, pattern)), None)


def main() -> int:
    arguments = sys.argv[1:]
    is_list = arguments[0] == "--list"
    table, *files = map(pathlib.Path, arguments[is_list:])
    rows = read_table(table)
    ours = {file.name.lower() for file in files}
    wrong = []
    seen = set()
    for file in files:
        binary = Binary(file)
        if binary.subsystem > OLDEST_SUBSYSTEM:
            wrong.append(f"{file.name} requires subsystem {binary.subsystem[0]}.{binary.subsystem[1]}")
        of_windows = sorted(i for i in binary.imports() if i[0] not in ours)
        youngest = []
        for library, function in of_windows:
            first = first_windows(rows, library, function)
            seen.add((library, function, first))
            if first is None:
                wrong.append(f"{file.name} imports {function} of {library}, which is not in {table.name}")
            elif RELEASES.index(first) > RELEASES.index(OLDEST):
                wrong.append(f"{file.name} imports {function} of {library}, which Windows has since {first}")
            elif first == OLDEST:
                youngest.append(function)
        print(f"{file.name}: subsystem {binary.subsystem[0]}.{binary.subsystem[1]}, {len(of_windows)} imports; "
              f"from {OLDEST} on: {', '.join(youngest) or 'none'}")
    if is_list:
        print("\n".join(f"{library} {function} {first}" for library, function, first in sorted(seen, key=str)))
    print(f"imports: {len(files)} files, {len(seen)} functions, {len(wrong)} wrong")
    print("\n".join(wrong))
    return 1 if wrong or not seen else 0


if __name__ == "__main__":
    sys.exit(main())
