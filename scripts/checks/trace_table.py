#!/usr/bin/env python3
"""Checks that docs/support.md explains every line that the product writes, and no other line.

It reads from the code the text of each OutputDebugStringW, FormatTraceLine, PrintConsole and ReportFailure, without the
boot program's answers to a question (Answer), which need no explanation. It reads from the page the first cell of each
row of the tables whose head begins with "line". A variable part (%ls, %d) is "…" in the page. Blanks and line ends at
either end of a text do not count. COMPOSED lists the lines that the code composes from pieces; their rows are compared
piece by piece.

usage: trace_table.py [SOURCE-FOLDER]
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else __file__).resolve()
ROOT = ROOT if len(sys.argv) > 1 else ROOT.parents[2]
PAGE = "docs/support.md"
ROOMS = ["boot", "foundation", "include", "launcher", "legacy", "registry", "service", "trackers"]

# The rows of composed lines, and the file whose literals contain their pieces.
COMPOSED = {
    '"…" module=kestrafetch params mode=… devType=… priDevId="…"': "launcher/launch_command.cpp",
    '"…" module=kestrafetch params mode=…': "launcher/launch_command.cpp",
    '"…" -d "…"': "legacy/proxy_launch.cpp",
}

# The files that may call the functions that others must not.
WRITERS = ["foundation/trace.cpp", "boot/console.cpp"]
UNKNOWN_WRITERS = re.compile(
    r"\b(OutputDebugStringA|wcout|wcerr|cout|cerr|v?f?w?printf|f?put(?:w?s|w?c)|WriteConsole[AW]?|MessageBox(?:Ex)?[AW]?)"
    r"\s*[(<]")
TOKEN = re.compile(r'//[^\n]*|/\*.*?\*/|L"(?:[^"\\\n]|\\.)*"|"(?:[^"\\\n]|\\.)*"|\'(?:[^\'\\\n]|\\.)+\'', re.DOTALL)
LITERAL = r'L"(?:[^"\\\n]|\\.)*"'
LITERALS = re.compile(rf"\s*({LITERAL}(?:\s*{LITERAL})*)\s*([,)+]?)")
ESCAPES = {"n": "\n", "t": "\t", "\\": "\\", '"': '"', "'": "'"}


def without_comments(code: str) -> str:
    """The same text, line by line, with blanks instead of comments."""
    return TOKEN.sub(lambda m: re.sub(r"[^\n]", " ", m[0]) if m[0].startswith(("//", "/*")) else m[0], code)


def text_of(literals: str) -> str:
    joined = "".join(part[2:-1] for part in re.findall(LITERAL, literals))
    return re.sub(r"\\(.)", lambda m: ESCAPES.get(m[1], m[0]), joined)


def as_in_page(text: str) -> str:
    return re.sub(r"%l?[a-z]", "…", text).strip()


def lines_of_code(name: str, code: str, wrong: list[str]) -> list[tuple[str, str]]:
    """The pair (text as in the page, file:line) of each line that one file writes."""
    found = []
    buffers = {"FormatTraceLine": r"\s*[A-Za-z]\w*\s*,", "PrintConsole": "", "OutputDebugStringW": "", "ReportFailure": ""}
    for call in re.finditer(r"(?<![\w:])(?:::)?(FormatTraceLine|PrintConsole|OutputDebugStringW|ReportFailure)\s*\(", code):
        where = f"{name}:{code.count(chr(10), 0, call.start()) + 1}"
        rest = code[call.end():]
        if before := re.match(buffers[call[1]], rest):
            rest = rest[before.end():]
        literal = LITERALS.match(rest)
        if literal and literal[2] != "+":
            found.append((as_in_page(text_of(literal[1])), where))
        elif call[1] == "OutputDebugStringW":
            argument = rest.partition(")")[0].strip()
            buffer = re.search(rf"FormatTraceLine\s*\(\s*{re.escape(argument)}\s*,", code[:call.start()])
            composed = argument in ("line.c_str(", "line.Join(") and name in COMPOSED.values()
            if not buffer and not composed:
                wrong.append(f"{where}: writes a line whose text this check cannot read: {argument}")
        elif not re.match(r"\s*\w*\s*(TraceBuffer|const wchar_t)", code[call.end():]):  # nor a declaration
            wrong.append(f"{where}: {call[1]} without a literal text")
    for other in UNKNOWN_WRITERS.finditer(code):
        line = code.count("\n", 0, other.start()) + 1
        wrong.append(f"{name}:{line}: {other[1]} writes without the functions of foundation/trace.h")
    return found


def rows_of_page(page: str) -> list[tuple[str, int]]:
    """The pair (text, line number) of the first cell of each row of the tables whose head begins with "line"."""
    rows, in_table = [], False
    for number, line in enumerate(page.splitlines(), 1):
        if not line.startswith("|"):
            in_table = False
        elif re.match(r"\|\s*line\s*\|", line):
            in_table = True
        elif in_table and not re.match(r"\|[\s:|-]+$", line):
            cell = re.match(r"\|\s*(`+)(.+?)\1\s*(?<!\\)\|", line)
            rows.append((cell[2].replace("\\|", "|").strip() if cell else line, number))
    return rows


def main() -> int:
    wrong: list[str] = []
    written: dict[str, str] = {}
    literals: dict[str, str] = {}
    for room in ROOMS:
        for file in sorted((ROOT / room).rglob("*")):
            name = file.relative_to(ROOT).as_posix()
            if file.suffix not in {".h", ".cpp"} or name in WRITERS:
                continue
            code = without_comments(file.read_text(encoding="utf-8"))
            for text, where in lines_of_code(name, code, wrong):
                written.setdefault(text, where)
            if name in COMPOSED.values():
                literals[name] = "\n".join(text_of(each) for each in re.findall(LITERAL, code))

    rows = rows_of_page((ROOT / PAGE).read_text(encoding="utf-8"))
    explained = {text for text, _ in rows}
    for text, where in written.items():
        if text not in explained:
            wrong.append(f"{where}: {PAGE} has no row for this line:\n    {text}")
    for text, file in COMPOSED.items():
        if text not in explained:
            wrong.append(f"{file}: {PAGE} has no row for this line:\n    {text}")
    seen = set()
    for text, number in rows:
        if text in seen:
            wrong.append(f"{PAGE}:{number}: a second row for this line:\n    {text}")
        seen.add(text)
        if text in COMPOSED:
            pieces = re.findall(r"[\w=-]+", text.replace("…", " "))
            missing = [piece for piece in pieces if piece not in literals.get(COMPOSED[text], "")]
            if missing:
                wrong.append(f"{PAGE}:{number}: {COMPOSED[text]} has no {' '.join(missing)} to write this line:\n    {text}")
        elif text not in written:
            wrong.append(f"{PAGE}:{number}: no code writes this line:\n    {text}")

    print(f"trace table: {len(written) + len(COMPOSED)} lines in the code, {len(rows)} rows, {len(wrong)} wrong")
    print("\n".join(wrong))
    return 1 if wrong or not written or not rows else 0


if __name__ == "__main__":
    sys.exit(main())
