#!/usr/bin/env python3
"""Draws the beginning and the end of the output of scripts/demo.sh as a terminal shows it.

    scripts/demo.sh | tee build/demo.log; scripts/demo_picture.py build/demo.log >docs/demo.svg
"""
import pathlib
import re
import sys
from xml.sax.saxutils import escape

COLUMNS, LINE, LETTER, MARGIN = 118, 18, 7.85, 16
FIRST, LAST = "== Act 1", "Entering in polling mode"      # of the trace that is shown
TABLE, TOP_ROWS, END_ROWS = "== Expected against seen", 3, 2  # of the table that is shown
COLOURS = {"title": "#ffffff", "step": "#56d4dd", "started": "#7ee787", "ok": "#7ee787", "plain": "#d1d5da", "gap": "#8b949e"}


def kind_of(line: str) -> str:
    if line.startswith("== ") or line.endswith("as expected"):
        return "title"
    if line.startswith("-- "):
        return "step"
    if re.match(r"\s+ok ", line):
        return "ok"
    if "module=kestrafetch" in line:
        return "started"
    return "gap" if line.strip() == "⋮" else "plain"


def excerpt(lines: list[str]) -> list[str]:
    first = next(i for i, line in enumerate(lines) if line.startswith(FIRST))
    last = next(i for i, line in enumerate(lines) if i > first and LAST in line)
    table = next(i for i, line in enumerate(lines) if line.startswith(TABLE))
    rows = [line for line in lines[table + 1:] if re.match(r"  (ok|DIFFERS) ", line)]
    count = next(line for line in lines[table:] if line.endswith("as expected"))
    gap = ["     ⋮"]
    return [*lines[first:last + 1], *gap, "", lines[table], *rows[:TOP_ROWS], *gap, *rows[-END_ROWS:], "", count]


def main() -> int:
    if len(sys.argv) != 2 or sys.argv[1].startswith("-"):
        helped = sys.argv[1:] in (["-h"], ["--help"])
        print(__doc__, file=sys.stdout if helped else sys.stderr)
        return 0 if helped else 2
    text = pathlib.Path(sys.argv[1]).read_bytes().decode("utf-8").replace("\r", "")
    shown = []
    for line in excerpt(re.sub(r"\x1b\[[0-9;]*m", "", text).splitlines()):
        for part in [line[at:at + COLUMNS] for at in range(0, max(1, len(line)), COLUMNS)]:
            shown.append((kind_of(line), part))
    width, height = round(COLUMNS * LETTER) + 2 * MARGIN, len(shown) * LINE + 2 * MARGIN
    print(f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" height="{height}" '
          'role="img" aria-label="The demo in a terminal">')
    print("  <style>text { font: 13px ui-monospace, Consolas, \"DejaVu Sans Mono\", monospace; white-space: pre; }")
    print("  " + " ".join(f".{kind} {{ fill: {colour}; }}" for kind, colour in COLOURS.items()))
    print("  .title { font-weight: 700; }</style>")
    print(f'  <rect width="{width}" height="{height}" rx="8" fill="#0d1117" stroke="#30363d"/>')
    for number, (kind, part) in enumerate(shown):
        if part.strip():
            y = MARGIN + number * LINE + 13
            # Leading blanks become a distance, because not every viewer preserves them.
            x = MARGIN + (len(part) - len(part.lstrip())) * LETTER
            width_of = len(part.strip()) * LETTER
            print(f'  <text class="{kind}" x="{x:.1f}" y="{y}" textLength="{width_of:.1f}" xml:space="preserve">'
                  f"{escape(part.strip())}</text>")
    print("</svg>")
    return 0


if __name__ == "__main__":
    sys.exit(main())
