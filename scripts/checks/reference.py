#!/usr/bin/env python3
"""Writes the reference of the exported interface to build/reference/ and checks it: Doxygen prints no warning (each
class, record, operation, argument, result, constant and macro of the headers is documented), and the reference contains
every export of the library.
"""
import html
import os
import pathlib
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
OUTPUT = ROOT / "build" / "reference"
EXPORTS = ROOT / "tests" / "library" / "exports.txt"
sys.path.insert(0, str(pathlib.Path(__file__).parent))
from package import version_of  # noqa: E402


def exported_operations() -> list[str]:
    """The names by which a host calls the exports of tests/library/exports.txt."""
    listed = [line for line in EXPORTS.read_text().splitlines() if line and line[0] != "#"]
    plain = subprocess.run(["c++filt", *listed], check=True, capture_output=True, text=True).stdout
    return [re.match(r"[\w:]+", name).group(0) for name in plain.splitlines()]


def pages() -> dict[str, str]:
    """The pages' words, without markup and code."""
    text = {}
    for page in OUTPUT.glob("*.html"):
        words = re.sub(r"<script.*?</script>|<style.*?</style>|<[^>]+>", " ", page.read_text(), flags=re.DOTALL)
        text[page.name] = html.unescape(words)
    return text


def main() -> int:
    shutil.rmtree(OUTPUT, ignore_errors=True)
    OUTPUT.mkdir(parents=True)
    version = version_of((ROOT / "include" / "kestraboot" / "version.h").read_text())
    names = {"KESTRABOOT_VERSION": version, "KESTRABOOT_REFERENCE": str(OUTPUT)}
    run = subprocess.run(["doxygen", "cmake/Doxyfile"], cwd=ROOT, env={**os.environ, **names},
                         capture_output=True, text=True)
    said = run.stdout + run.stderr
    wrong = [f"doxygen: {line}" for line in said.splitlines() if line]
    if run.returncode != 0 and not wrong:
        wrong.append(f"doxygen exited with {run.returncode}")

    text = pages()
    operations = exported_operations()
    for operation in operations:
        scope, _, name = operation.rpartition("::")
        where = [words for page, words in text.items() if not scope or page == f"class{scope}.html"]
        if not any(f"◆ {name}()" in re.sub(r"\s+", " ", words) for words in where):
            wrong.append(f"the reference does not describe {operation}")
    for page, words in text.items():
        if re.search(r"\|\s*\|", words):
            wrong.append(f"{page}: doxygen did not recognise a table")
    if version not in text.get("index.html", ""):
        wrong.append(f"the reference does not name its version, {version}")

    print(f"reference: version {version}, {len(text)} pages, {len(operations)} exported operations, "
          f"{len(wrong)} wrong")
    print("\n".join(wrong))
    return 1 if wrong or not operations else 0


if __name__ == "__main__":
    sys.exit(main())
