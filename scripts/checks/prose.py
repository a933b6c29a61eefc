#!/usr/bin/env python3
"""Checks the wording of the pages and of the public headers' comments: words that CONTRIBUTING's table replaces, long
sentences, and procedures in table cells. Code, quotations and the fixed trace lines do not count. Of the other sources it
reads the names of tests, as sentences, and the texts of failures.

usage: prose.py [FILE ...]     checks those files; default: all pages, public headers, tests and scripts
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "scripts"))
from test_index import TEST, sentence  # noqa: E402

LONGEST_SENTENCE, LONGEST_CELL = 40, 45  # words
AVOIDED = {  # as in the table of CONTRIBUTING.md
    r"t(?:ell|ells|old|elling) (?:of|about)|hears? of|heard of": "report",
    r"notic(?:e|es|ed|ing)(?! that)": "detect",
    r"a look(?! up)|looks?(?:ed)? at|looking at": "scan, poll, check",
    r"put in|puts in|taken out|takes? out": "insert, remove",
    r"lies|stands?(?: in)?(?! for\b)|lie(?= (?:in|beside|at|there))": "is, is stored in",
    r"(?:is|are|was|were|be|been) ended": "exit, terminate, stop",
    r"mend(?:s|ed)?": "fix",
    r"rights": "privileges, permissions",
    r"as (?:it|they) stands?": "unchanged, verbatim",
    r"on purpose": "the reason: because, so that",
    r"whoever": "anybody who, the caller",
    r"but for": "except for, unless",
    r"that which": "a noun",
}
AVOIDED_IN_MESSAGES = {  # in addition: short texts, in which these words have no other use
    r"tells?(?!.* apart)|told(?! to\b)": "report, print, show",
    r"says? so|said so": "print, write, trace",
    r"behind (?:an?|the|its|all)": "after, beside",
    r"anew": "again",
    r"(?:is|are|be|been) had": "create, read",
}


def compiled(words: dict[str, str]) -> list[tuple[re.Pattern, str]]:
    return [(re.compile(rf"\b(?:{each})\b", re.IGNORECASE), instead) for each, instead in words.items()]


PATTERNS = compiled(AVOIDED)
MESSAGE_PATTERNS = PATTERNS + compiled(AVOIDED_IN_MESSAGES)
CODE = {".cpp", ".sh", ".py", ".cmake"}
# The text that a failure prints: after << and in an exception in C++, after the usual calls in scripts.
STRING = r"""("(?:[^"\\\n]|\\.)*")"""
MESSAGE = {
    ".cpp": re.compile(rf"(?:<<|runtime_error\(|Fail\()\s*{STRING}"),
    ".sh": re.compile(rf"\b(?:fail|echo|wrong_usage)\s+{STRING}"),
    ".py": re.compile(rf"\b(?:print|append|exit|Error)\(\[?\s*f?{STRING}|=\s\[f{STRING}\s*for"),
    ".cmake": re.compile(rf"\bmessage\(\w+\s+{STRING}"),
}
FENCE = re.compile(r"^```.*?^```$|^(?: {4}|\t)[^\n]*$|<!--.*?-->", re.MULTILINE | re.DOTALL)
QUOTED = re.compile(r"`[^`\n]*`|\"[^\"\n]*\"|\]\([^)]*\)")
CLAUSE = re.compile(r"(?:^|[.:;] )What (?!is |are |does |do |to |happens )[^?.]*\.")


def blanked(match: re.Match) -> str:
    """The same number of lines, without words."""
    return "\n" * match[0].count("\n")


def default_files() -> list[pathlib.Path]:
    found = [*ROOT.glob("*.md"), *(ROOT / "docs").rglob("*.md"), *(ROOT / "samples").rglob("*.md"),
             *(ROOT / "include").rglob("*.h")]
    found += [file for folder in ("tests", "scripts", "bench", "cmake") for file in (ROOT / folder).rglob("*")
              if file.suffix in CODE]
    return sorted(file for file in found if file.name != "CHANGELOG.md")


def prose_of(file: pathlib.Path) -> str:
    """The file's text, line by line, without everything that is not prose."""
    text = file.read_text(encoding="utf-8")
    if file.suffix == ".h":
        comments = [re.search(r"(///?<?|^\s*\*) ?(.*)$", line) for line in text.splitlines()]
        # A member's comment ends with its line, like a list item.
        text = "\n".join(("- " if found[1] == "///<" else "") + found[2] if found else "" for found in comments)
        return QUOTED.sub("x", text)
    if file.name == "CONTRIBUTING.md":  # which names the words
        text = re.sub(r"^\| we write.*?\n\n", blanked, text, flags=re.MULTILINE | re.DOTALL)
    return QUOTED.sub("x", FENCE.sub(blanked, text))


def sentences(text: str):
    """Each sentence with its first line. A blank line, a heading, a list item and a table cell end a sentence too."""
    block, start = [], 0
    for number, line in enumerate([*text.splitlines(), ""], 1):
        item = re.match(r"\s*(?:[-*] |\d+\. |#+ |\||///|@)", line)
        if not line.strip() or item:
            yield from ((start, each) for each in re.split(r"(?<=[.!?:;])\s+", " ".join(block)) if each)
            block, start = [], number
        if line.startswith("|"):
            yield from ((number, part) for cell in line.split("|") for part in re.split(r"(?<=[.!?:;])\s+", cell.strip()) if part)
        elif line.strip():
            if not block:
                start = number
            block.append(line.strip())


def messages(file: pathlib.Path):
    """Each name of a test and each text of a failure, with its line."""
    text = file.read_text(encoding="utf-8")
    for found in TEST.finditer(text) if file.suffix == ".cpp" else ():
        yield text.count("\n", 0, found.start()) + 1, f"{sentence(found[1])} {sentence(found[2])}"
    for found in MESSAGE[file.suffix].finditer(text):
        words = next(each for each in found.groups() if each)[1:-1]
        yield text.count("\n", 0, found.start()) + 1, QUOTED.sub("x", re.sub(r"<[^>]*>|\{[^}]*\}|\$\w+", "x", words))


def findings(file: pathlib.Path):
    if file.suffix in CODE:
        for number, message in messages(file):
            for pattern, instead in MESSAGE_PATTERNS:
                for found in pattern.finditer(message):
                    yield number, f'"{found[0]}" in "{message}": write {instead}'
        return
    text = prose_of(file)
    for number, line in enumerate(text.splitlines(), 1):
        for pattern, instead in PATTERNS:
            for found in pattern.finditer(line):
                yield number, f'"{found[0]}": write {instead}'
        if line.startswith("|"):
            for cell in line.split("|"):
                if len(cell.split()) > LONGEST_CELL:
                    yield number, f"a table cell of {len(cell.split())} words: make it a paragraph or a list"
    for number, each in sentences(text):
        if len(each.split()) > LONGEST_SENTENCE:
            yield number, f"a sentence of {len(each.split())} words: {each[:50]}..."
        if CLAUSE.match(each):
            yield number, f"a clause as the subject: {each[:50]}"


def main() -> int:
    files = [pathlib.Path(name).resolve() for name in sys.argv[1:]] or default_files()
    count = 0
    for file in files:
        for number, said in sorted(findings(file)):
            print(f"{file.relative_to(ROOT)}:{number}: {said}")
            count += 1
    print(f"prose: {len(files)} files, {count} findings")
    return 1 if count or not files else 0


if __name__ == "__main__":
    sys.exit(main())
