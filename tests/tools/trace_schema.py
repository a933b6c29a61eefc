#!/usr/bin/env python3
"""Checks the output of kestratrace --json against docs/kestratrace.schema.json: every line of every recording, as
lines and as arrivals. It also checks that the schema refuses wrong lines: each line with a member removed, with one
too many, with a value of another type.

usage: trace_schema.py TEST-PREFIX-SCRIPT WINE-PREFIX KESTRATRACE SCHEMA RECORDING ...
"""
import json
import pathlib
import subprocess
import sys

import jsonschema

script, prefix, program, schema, *recordings = sys.argv[1:]
SCHEMA = json.loads(pathlib.Path(schema).read_text(encoding="utf-8"))
jsonschema.Draft7Validator.check_schema(SCHEMA)
CHECK = jsonschema.Draft7Validator(SCHEMA)


def shown(recording: str, *options: str) -> list[dict]:
    command = [script, "run", prefix, "60", program, *options, "--json", "--from", f"Z:{recording}"]
    run = subprocess.run(command, capture_output=True, check=True)
    return [json.loads(line) for line in run.stdout.decode("utf-8").splitlines() if line.startswith("{")]


def wrong_ones(line: dict):
    for member in line:
        yield f"without {member}", {name: value for name, value in line.items() if name != member}
        yield f"a list as {member}", line | {member: [[]]}
    yield "a member too many", line | {"another": 1}
    yield "another version", line | {"schema": 2}
    yield "another type", line | {"type": "something"}


def main() -> int:
    failures, count, kinds, rules = [], 0, set(), set()
    for recording in recordings:
        for options in ([], ["--arrivals"]):
            lines = shown(recording, *options)
            for line in lines:
                count += 1
                kinds.add(line["type"])
                rules |= {line[key] for key in ("rule", "outcome") if key in line}
                failures += [f"{error.message}: {line}" for error in CHECK.iter_errors(line)]
                failures += [f"passes {what}: {wrong}" for what, wrong in wrong_ones(line) if CHECK.is_valid(wrong)]
    arrival = SCHEMA["definitions"]["arrival"]["properties"]
    missing = {"line", "lost", "arrival"} - kinds
    unseen = (set(arrival["rule"]["enum"]) | set(arrival["outcome"]["enum"])) - rules
    failures += [f"the recordings have none of these: {sorted(missing | unseen)}"] if missing or unseen else []
    print(f"{count} lines, {len(failures)} failures")
    print("\n".join(failures[:20]))
    return 1 if failures or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
