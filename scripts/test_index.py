#!/usr/bin/env python3
"""Writes tests/README.md from the names of the tests: for each behaviour the test that checks it, by room and by guide.

usage: test_index.py            writes the page
       test_index.py --check    fails if the page differs from the tests, or if a name is unclear
"""
import collections
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
PAGE = ROOT / "tests/README.md"
TEST = re.compile(r"^(?:TYPED_)?TEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\)", re.MULTILINE)
ENTRY = re.compile(r"add_test\(\s*NAME\s+(\S+)")
WORD = re.compile(r"[A-Z]+(?=[A-Z][a-z]|\d|$)|[A-Z]?[a-z]+|[A-Z]+|\d+")
HEAD = """# From behaviour to test

`scripts/test_index.py` makes this page from the names of the tests, and `scripts/test.sh` compares it. Each line is a
suite with the behaviours that its tests check. [Testing](../docs/testing.md) explains how to run one of them.
"""


def sentence(name: str) -> str:
    """TheFirstOneWritesTheEntry: the first one writes the entry. Abbreviations keep their capitals."""
    words = WORD.findall(name)
    return " ".join(word if len(word) > 1 and word.isupper() else word.lower() for word in words)


def first_comment(text: str) -> str:
    """The comment at the top of the file."""
    lines = []
    for line in text.splitlines():
        if not line.startswith("//"):
            break
        lines.append(line.removeprefix("//").strip())
    return " ".join(lines)


def rooms():
    """Folder, then file, then suite, then behaviours, each in the order of the tree."""
    found = collections.defaultdict(dict)
    for file in sorted((ROOT / "tests").rglob("*.cpp")):
        text = file.read_text(encoding="utf-8")
        suites = collections.defaultdict(list)
        for suite, name in TEST.findall(text):
            if not name.startswith("DISABLED_"):  # run by another test of the file, in a process of its own
                suites[suite].append(sentence(name))
        if suites:
            found[file.parent.relative_to(ROOT)][file] = (first_comment(text), suites)
    return found


def entries():
    """The entries of ctest that are not GoogleTest programs, with the folder that adds each."""
    for listing in sorted((ROOT / "tests").rglob("CMakeLists.txt")):
        for name in ENTRY.findall(listing.read_text(encoding="utf-8")):
            if "$" not in name:
                yield name, listing.parent.relative_to(ROOT)


def guides() -> list[str]:
    listing = (ROOT / "tests/guides/CMakeLists.txt").read_text(encoding="utf-8")
    return re.search(r"foreach\(guide IN ITEMS ([^)]+)\)", listing)[1].split()


def guide_entry(guide: str) -> str:
    """Its name in tests/guides/CMakeLists.txt."""
    return pathlib.PurePath(guide.removesuffix("/README")).name


def page() -> tuple[str, int]:
    lines, count = [HEAD], 0
    lines += ["## By guide\n", "| page | followed by |", "|---|---|"]
    lines += [f"| [{guide}](../{guide}.md) | `ctest -R 'guides.{guide_entry(guide)}'` |" for guide in guides()]
    lines += ["\n## By room"]
    for folder, files in sorted(rooms().items()):
        lines.append(f"\n### {folder.as_posix()}\n")
        for file, (comment, suites) in files.items():
            link = f"[{file.name}]({file.relative_to(PAGE.parent).as_posix()})"
            lines.append(f"{link}{': ' + comment if comment else ''}\n")
            for suite, behaviours in suites.items():
                count += len(behaviours)
                lines.append(f"- **{sentence(suite).capitalize()}**: {'; '.join(behaviours)}")
            lines.append("")
    lines += ["## Checks that are no program of tests\n", "| entry | from |", "|---|---|"]
    lines += [f"| `{name}` | [{folder.as_posix()}]({(ROOT / folder).relative_to(PAGE.parent).as_posix()}/CMakeLists.txt) |" for name, folder in entries()]
    return re.sub(r"\n{3,}", "\n\n", "\n".join(lines)) + "\n", count


def main() -> int:
    if sys.argv[1:] not in ([], ["--check"]):
        print(__doc__, file=sys.stderr)
        return 2
    text, count = page()
    if count == 0:
        print("no test was found")
        return 1
    if not sys.argv[1:]:
        PAGE.write_text(text, encoding="utf-8")
        return 0
    if not PAGE.exists() or PAGE.read_text(encoding="utf-8") != text:
        print(f"{PAGE.relative_to(ROOT)} differs from the tests: run scripts/test_index.py")
        return 1
    print(f"{count} behaviours in the index of tests")
    return 0


if __name__ == "__main__":
    sys.exit(main())
