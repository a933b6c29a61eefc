#!/usr/bin/env python3
"""Checks that the interface changes only with the major version. tests/library/promised.txt lists, for each major version,
the promised exports and layouts; those of the major version of version.h must still be in exports.txt and layouts.txt.
A new major version has a section of its own, and CHANGELOG.md names each record and operation that it changes. An added
export breaks no host; the next major version promises it.

usage: interface.py [FOLDER]     the sources; these without one
"""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(sys.argv[1] if sys.argv[1:] else pathlib.Path(__file__).parents[2]).resolve()
LISTS = ROOT / "tests" / "library"
PROMISED = "tests/library/promised.txt"


def entries(text: str) -> list[str]:
    return [line.strip() for line in text.splitlines() if line.strip() and not line.startswith(("#", "//"))]


def promises(text: str) -> dict[int, list[str]]:
    """The promises of each major version."""
    sections = {}
    for line in entries(text):
        if major := re.fullmatch(r"major (\d+)", line):
            section = sections.setdefault(int(major[1]), [])
        else:
            section.append(line)
    return sections


def named(entry: str) -> str:
    """The record or the operation of an entry, as CHANGELOG.md names it."""
    if record := re.match(r"(?:RECORD|FIELD)\((\w+)", entry):
        return record[1]
    plain = subprocess.run(["c++filt", entry], check=True, capture_output=True, text=True).stdout
    return re.match(r"[\w:]+", plain)[0].rpartition("::")[2]


def broken(before: list[str], now: list[str]) -> list[str]:
    """The names that an older host needs and no longer finds."""
    layouts = [[entry for entry in each if "(" in entry] for each in (before, now)]
    gone = [entry for entry in before if entry not in now]
    gone += [entry for entry in layouts[1] if entry not in layouts[0]]  # an added member changes the layout
    return sorted({named(entry) for entry in gone})


def earlier_pages() -> list[str]:
    """Each committed state of promised.txt; none without a history."""
    def git(*words: str) -> str:
        run = subprocess.run(["git", "-C", ROOT, *words], capture_output=True, text=True)
        return run.stdout if run.returncode == 0 else ""

    if git("rev-parse", "--show-toplevel").strip() != str(ROOT):
        return []
    return [git("show", f"{commit}:{PROMISED}") for commit in git("log", "--format=%H", "--", PROMISED).split()]


def changes_of(major: int) -> str:
    """The text of CHANGELOG.md on that major version, or on the one in preparation."""
    sections = re.split(r"^## ", (ROOT / "CHANGELOG.md").read_text(encoding="utf-8"), flags=re.MULTILINE)
    return "".join(each for each in sections if re.match(rf"\[?({major}\.|Unreleased)", each))


def main() -> int:
    header = (ROOT / "include" / "kestraboot" / "version.h").read_text(encoding="utf-8")
    major = int(re.search(r"^#define KESTRABOOT_VERSION_MAJOR (\d+)$", header, re.MULTILINE)[1])
    now = [entry for name in ("exports.txt", "layouts.txt") for entry in entries((LISTS / name).read_text())]
    promised = promises((ROOT / PROMISED).read_text())
    wrong = []
    if max(promised) != major:
        wrong.append(f"version.h is of major version {major}: {PROMISED} needs its section, with exports.txt and "
                     "layouts.txt unchanged")
    else:
        wrong += [f"{name} is not what major version {major} promises: raise KESTRABOOT_VERSION_MAJOR, and state in "
                  "CHANGELOG.md the change" for name in broken(promised[major], now)]
    majors = sorted(promised)
    for before, after in zip(majors, majors[1:]):
        wrong += [f"CHANGELOG.md does not name {name}, which version {after} changes"
                  for name in broken(promised[before], promised[after])
                  if not re.search(rf"^\s*[-*].*\b{name}\b", changes_of(after), re.MULTILINE)]
    wrong += sorted({f"the section of version {each} in {PROMISED} was changed: a promised interface stays"
                     for page in earlier_pages() for each, section in promises(page).items()
                     if promised.get(each) != section})
    print(f"interface: major version {major}, {len(now)} exports, records and members, {len(wrong)} wrong")
    print("\n".join(wrong))
    return 1 if wrong or not now else 0


if __name__ == "__main__":
    sys.exit(main())
