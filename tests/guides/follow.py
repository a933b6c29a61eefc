#!/usr/bin/env python3
"""Follows a guide word for word, in a folder with only the archive: writes the files that it shows, runs its
commands in order, and checks the output that it shows.

    ```cpp file=NAME      a file
    ```sh                 commands; all blocks are one script, which stops at the first failure
    ```sh prefix          the same, except that the Wine prefix is a copy of the tests' own
    ```text output        lines that the commands before print, in this order
    any other block       for the reader only

The guides name the archive for msvcrt and its compiler. The archive of the arguments, and KESTRABOOT_COMPILER in the
environment, replace them.

usage: follow.py GUIDE PACKED WORK PRISTINE-PREFIX SECONDS     PACKED: the folder with the archive
"""
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys

BLOCK = re.compile(r"^```(\w+)([^\n]*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
COMPILER = "x86_64-w64-mingw32-g++-posix"
ARCHIVE = re.compile(r"kestraboot-\d+\.\d+\.\d+-win64")
ENDED = "== end of block"
# A wait without a time limit. wine_await of wine.sh has one.
ENDLESS = re.compile(r"^\s*(until|while)\b", re.MULTILINE)


def script_of(guide: str, home: pathlib.Path, pristine: pathlib.Path) -> tuple[str, list[tuple[int, str]]]:
    """The commands, and (number of the block of commands, output that it shows)."""
    script, shown, block = ["set -euo pipefail"], [], -1
    for language, rest, text in BLOCK.findall(guide):
        words = rest.split()
        if named := [word[len("file="):] for word in words if word.startswith("file=")]:
            file = home / named[0]
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text(text, encoding="utf-8")
        elif language == "sh":
            block += 1
            if ENDLESS.search(text):
                sys.exit(f"block {block + 1} of commands has no time limit:\n{text}")
            if "prefix" in words:
                text = re.sub(r"^wine_prefix_make", f'wine_prefix_copy "{pristine}"', text, flags=re.MULTILINE)
            script.append(f"{text}\necho '{ENDED}'")
        elif language == "text" and "output" in words:
            shown.append((block, text))
    return "\n".join(script), shown


def missing_line(output: str, shown: str) -> str | None:
    lines = iter([line.rstrip() for line in output.splitlines()])
    return next((want for want in shown.splitlines() if want.strip() and want.rstrip() not in lines), None)


def main() -> int:
    guide, packed, work, pristine = (pathlib.Path(each).resolve() for each in sys.argv[1:5])
    archive = next(each for each in packed.glob("*.zip") if not each.stem.endswith("-symbols"))
    home = work / "guides" / (guide.parent.name if guide.stem == "README" else guide.stem)
    shutil.rmtree(home, ignore_errors=True)
    home.mkdir(parents=True)
    (home / archive.name).symlink_to(archive)
    text = guide.read_text(encoding="utf-8").replace(COMPILER, os.environ.get("KESTRABOOT_COMPILER", COMPILER))
    script, shown = script_of(ARCHIVE.sub(archive.stem, text), home, pristine)
    (home / "guide.sh").write_text(script, encoding="utf-8")

    environment = os.environ | {"HOME": str(home), "CXXFLAGS": "-Wall -Wextra -Wpedantic -Werror"}
    # The output goes to a file, because processes that Wine starts inherit it and would keep a pipe open.
    with (home / "guide.out").open("wb") as out:
        running = subprocess.Popen(["bash", "guide.sh"], cwd=home, env=environment, stdin=subprocess.DEVNULL,
                                   stdout=out, stderr=subprocess.STDOUT, start_new_session=True)
        try:
            status = running.wait(timeout=float(sys.argv[5]))
        except subprocess.TimeoutExpired:
            status = -1
        finally:
            wine = environment | {"WINEPREFIX": str(home / "kestraboot-wine")}
            subprocess.run(["timeout", "30", "wineserver", "-k"], env=wine, check=False, stdout=out, stderr=out)
            try:
                os.killpg(running.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
    for made in ("kestraboot-wine", "kestraboot"):
        shutil.rmtree(home / made, ignore_errors=True)

    output = (home / "guide.out").read_text(encoding="utf-8", errors="replace")
    outputs = output.split(ENDED)
    wrong = [f"the commands end with {status}"] if status != 0 else []
    for block, text in shown:
        line = missing_line(outputs[block] if block < len(outputs) else "", text)
        if line is not None:
            wrong.append(f"the commands of block {block + 1} do not print: {line}")
    if not shown:
        wrong.append("the guide shows no output")
    print(output, "\n".join(wrong), sep="\n")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
