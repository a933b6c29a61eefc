#!/usr/bin/env python3
"""Prints what a build must make for some of its tests: the built files that their commands name.

    test_targets.py PRESET [--tests-regex REGEX] [--exclude-regex REGEX]
"""
import json
import pathlib
import subprocess
import sys


def outputs(*command: str) -> str:
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def main() -> int:
    preset, *chosen = sys.argv[1:]
    tests = json.loads(outputs("ctest", "--preset", preset, "--show-only=json-v1", *chosen))["tests"]
    build = pathlib.Path("build", preset).resolve()
    made = {line.rpartition(": ")[0] for line in outputs("ninja", "-C", str(build), "-t", "targets", "all").splitlines()}
    named = {pathlib.Path(word) for test in tests for word in test.get("command", ()) if word.startswith(f"{build}/")}
    print("\n".join(sorted(made & {path.relative_to(build).as_posix() for path in named})))
    return 0 if tests else 1


if __name__ == "__main__":
    sys.exit(main())
