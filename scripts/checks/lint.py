#!/usr/bin/env python3
"""Runs clang-tidy over the product's sources, two at a time. A file is looked at again only when it, a header of
the project or the configuration has changed since it was last found clean.

usage: lint.py BUILD-FOLDER (with a compile_commands.json of Clang's)
"""
import concurrent.futures
import hashlib
import json
import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
ROOMS = ["boot", "foundation", "launcher", "legacy", "registry", "samples", "service", "tools", "trackers"]
TIDY = "clang-tidy-14"


def digest(files) -> str:
    total = hashlib.sha256()
    for file in files:
        total.update(file.read_bytes())
    return total.hexdigest()


def lint(commands: pathlib.Path, file: pathlib.Path, stamp: pathlib.Path) -> tuple[str, str]:
    run = subprocess.run([TIDY, "-p", commands, "--quiet", file], capture_output=True, text=True)
    if run.returncode == 0 and "warning:" not in run.stdout and "error:" not in run.stdout:
        stamp.touch()
        return file.relative_to(ROOT).as_posix(), ""
    return file.relative_to(ROOT).as_posix(), run.stdout + run.stderr


def main() -> int:
    build = pathlib.Path(sys.argv[1]).resolve()
    stamps = build / "lint"
    stamps.mkdir(exist_ok=True)
    headers = digest(
        [ROOT / ".clang-tidy"]
        + sorted(h for room in [*ROOMS, "include"] for h in (ROOT / room).rglob("*.h"))
    )
    # Tests compile some of these files once more, behind a precompiled header that is not built here.
    commands = {
        pathlib.Path(entry["file"]): entry
        for entry in json.loads((build / "compile_commands.json").read_text())
        if " -o tests/" not in entry["command"]
    }
    sources = sorted(f for f in commands if f.is_relative_to(ROOT) and f.suffix == ".cpp"
                     and f.relative_to(ROOT).parts[0] in ROOMS)
    (stamps / "compile_commands.json").write_text(json.dumps([commands[f] for f in sources]))

    work = []
    for file in sources:
        stamp = stamps / hashlib.sha256((headers + digest([file]) + str(file)).encode()).hexdigest()
        if not stamp.exists():
            work.append((file, stamp))
    print(f"clang-tidy: {len(sources)} files, {len(work)} to look at", flush=True)

    bad = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for name, said in pool.map(lambda item: lint(stamps, *item), work):
            print(f"   {name}{' FAILED' if said else ''}", flush=True)
            if said:
                bad += 1
                print(said)
    return 1 if bad or not sources else 0


if __name__ == "__main__":
    sys.exit(main())
