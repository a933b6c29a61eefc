#!/usr/bin/env python3
"""Runs clang-tidy over the product's sources, two rooms at a time. It checks the files of a room as one, because Windows'
headers take most of the time. Only if it finds something there, it checks each file separately, and that result
counts. It skips a room if no file of the room, no header of the project that they include and no configuration has
changed since the room was last clean.

usage: lint.py BUILD-FOLDER (with a compile_commands.json of Clang's)
"""
import collections
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
ROOMS = ["boot", "foundation", "launcher", "legacy", "registry", "samples", "service", "tools", "trackers"]
TIDY = "clang-tidy"  # of the release
INCLUDE = re.compile(r'^\s*#\s*include\s+["<]([^">]+)[">]', re.MULTILINE)


def digest(files) -> str:
    total = hashlib.sha256()
    for file in files:
        total.update(str(file).encode() + file.read_bytes())
    return total.hexdigest()


def included_by(files, entries: list[dict], build: pathlib.Path) -> list[pathlib.Path]:
    """The project's headers that the files include, also through others. Without those that the build writes: they
    change with each commit."""
    folders = {pathlib.Path(folder) for entry in entries for folder in re.findall(r"-I(\S+)", entry["command"])}
    found, unread = set(), list(files)
    while unread:
        file = unread.pop()
        for name in INCLUDE.findall(file.read_text(encoding="utf-8")):
            headers = {(folder / name).resolve() for folder in {file.parent, *folders} if (folder / name).is_file()}
            new = {h for h in headers - found if h.is_relative_to(ROOT) and not h.is_relative_to(build)}
            found |= new
            unread += new
    return sorted(found)


def flags_of(entry: dict) -> str:
    """The options that affect the compilation, without the header search paths, which differ between a room's targets."""
    return " ".join(flag for flag in entry["command"].partition(" -o ")[0].split() if not flag.startswith("-I"))


def tidy(commands: pathlib.Path, file: pathlib.Path) -> str:
    """The findings in the file; empty if it is clean."""
    run = subprocess.run([TIDY, "-p", commands, "--quiet", file], capture_output=True, text=True)
    clean = run.returncode == 0 and "warning:" not in run.stdout and "error:" not in run.stdout
    return "" if clean else run.stdout + run.stderr + f"{TIDY} of {file.name} exited with {run.returncode}\n"


class Room:
    """Files of one folder that are compiled with the same options."""

    def __init__(self, folder: pathlib.Path, entries: list[dict], build: pathlib.Path, common: str):
        stamps = build / "lint"
        self.name = folder.relative_to(ROOT).as_posix()
        self.files = sorted(pathlib.Path(entry["file"]) for entry in entries)
        read = digest(self.files + included_by(self.files, entries, build))
        self.stamp = stamps / hashlib.sha256((common + flags_of(entries[0]) + read).encode()).hexdigest()
        self.whole = stamps / (self.name.replace("/", "_") + f"_{self.stamp.name[:8]}.cpp")
        entry = max(entries, key=lambda each: each["command"].count(" -I"))
        self.entry = entry | {"file": str(self.whole), "command": entry["command"].replace(entry["file"], str(self.whole)) + f" -iquote {folder}"}

    def text(self) -> str:
        """The files, one after the other, without repeated includes, which clang-tidy would report."""
        lines, included = [], set()
        for file in self.files:
            own = file.read_text(encoding="utf-8").splitlines()
            lines += [line for line in own if line not in included]
            included.update(line for line in own if line.startswith("#include"))
        return "\n".join(lines) + "\n"

    def lint(self, commands: pathlib.Path) -> str:
        self.whole.write_text(self.text(), encoding="utf-8")
        said = tidy(commands, self.whole) and "".join(tidy(commands, file) for file in self.files)
        self.whole.unlink()
        if not said:
            self.stamp.touch()
        return said


def main() -> int:
    build = pathlib.Path(sys.argv[1]).resolve()
    stamps = build / "lint"
    stamps.mkdir(exist_ok=True)
    common = digest([ROOT / ".clang-tidy", ROOT / "scripts/checks/lint.py"])
    common += subprocess.run([TIDY, "--version"], check=True, capture_output=True, text=True).stdout

    # Tests compile some of these files again, with a precompiled header.
    entries = {
        pathlib.Path(entry["file"]): entry
        for entry in json.loads((build / "compile_commands.json").read_text())
        if " -o tests/" not in entry["command"]
    }
    alike = collections.defaultdict(list)
    for file, entry in sorted(entries.items()):
        if file.is_relative_to(ROOT) and file.suffix == ".cpp" and file.relative_to(ROOT).parts[0] in ROOMS:
            alike[file.parent, flags_of(entry)].append(entry)
    rooms = [Room(folder, group, build, common) for (folder, _), group in alike.items()]
    (stamps / "compile_commands.json").write_text(
        json.dumps([entry for group in alike.values() for entry in group] + [room.entry for room in rooms]))

    work = [room for room in rooms if not room.stamp.exists()]
    print(f"clang-tidy: {sum(len(room.files) for room in rooms)} files in {len(rooms)} rooms, {len(work)} to check",
          flush=True)
    bad = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for room, said in zip(work, pool.map(lambda each: each.lint(stamps), work)):
            print(f"   {room.name}{' FAILED' if said else ''}", flush=True)
            if said:
                bad += 1
                print(said)
    return 1 if bad or not rooms else 0


if __name__ == "__main__":
    sys.exit(main())
