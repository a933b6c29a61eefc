#!/usr/bin/env python3
"""Checks that each link of the pages leads to a file of the tree and, if it names a heading, to that heading; and that
README links to each page of docs. Does not follow links into the web.

usage: links.py [FOLDER]     checks the pages of FOLDER, such as an unpacked package; default: these sources
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1] if sys.argv[1:] else pathlib.Path(__file__).parents[2]).resolve()
CODE = re.compile(r"^```.*?^```$|`[^`\n]*`", re.MULTILINE | re.DOTALL)
LINK = re.compile(r"\]\(([^)\s]+)\)")


def anchors(page: pathlib.Path) -> set[str]:
    headings = re.findall(r"^#+ (.*)$", page.read_text(encoding="utf-8"), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def main() -> int:
    pages = sorted([*ROOT.glob("*.md"), *(ROOT / "docs").rglob("*.md"), *(ROOT / "samples").rglob("*.md"),
                    *(ROOT / "tests").glob("*.md")])
    wrong, count, reached = [], 0, set()
    for page in pages:
        name = page.relative_to(ROOT)
        text = CODE.sub("", page.read_text(encoding="utf-8"))
        for link in LINK.findall(text):
            if re.match(r"[a-z]+:", link):
                continue
            count += 1
            path, _, anchor = link.partition("#")
            target = (page.parent / path).resolve() if path else page
            if not target.is_relative_to(ROOT) or not target.exists():
                wrong.append(f"{name}: no such file: {link}")
            elif anchor and (target.suffix != ".md" or anchor not in anchors(target)):
                wrong.append(f"{name}: no such heading: {link}")
            elif page == ROOT / "README.md":
                reached.add(target)
    wrong += [f"README.md does not lead to {page.relative_to(ROOT)}" for page in pages
              if page.parent == ROOT / "docs" and page not in reached]
    print(f"links: {count} in {len(pages)} pages, {len(wrong)} wrong")
    print("\n".join(wrong))
    return 1 if wrong or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
