#!/usr/bin/env python3
"""Plants changes of the interface in a copy of the lists, and checks that scripts/checks/interface.py refuses them.

usage: interface_refused.py SOURCES WORK-FOLDER
"""
import pathlib
import shutil
import subprocess
import sys

SOURCES, WORK = (pathlib.Path(each).resolve() for each in sys.argv[1:3])
LISTS = "tests/library"
VERSION, CHANGES = "include/kestraboot/version.h", "CHANGELOG.md"
EXPORTS, LAYOUTS, PROMISED = (f"{LISTS}/{name}.txt" for name in ("exports", "layouts", "promised"))
wrong = []


def fresh() -> None:
    shutil.rmtree(WORK, ignore_errors=True)
    for file in (VERSION, CHANGES, EXPORTS, LAYOUTS, PROMISED):
        (WORK / file).parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(SOURCES / file, WORK / file)
    unnamed = [line for line in (WORK / CHANGES).read_text(encoding="utf-8").splitlines() if "appInfo_tag" not in line]
    (WORK / CHANGES).write_text("\n".join(unnamed) + "\n", encoding="utf-8")


def replace(file: str, old: str, new: str) -> None:
    text = (WORK / file).read_text(encoding="utf-8")
    assert old in text, (file, old)
    (WORK / file).write_text(text.replace(old, new, 1), encoding="utf-8")


def expect(what: str, said: str | None) -> None:
    run = subprocess.run([SOURCES / "scripts/checks/interface.py", WORK], capture_output=True, text=True)
    if (run.returncode == 0) != (said is None) or (said or "") not in run.stdout:
        wrong.append(f"{what}: exit code {run.returncode}, and it prints\n{run.stdout}{run.stderr}")


def commit(*words: str) -> None:
    subprocess.run(["git", "-C", WORK, "-c", "user.name=a", "-c", "user.email=a@b.invalid", *words], check=True,
                   stdout=subprocess.DEVNULL)


GROWN = ("FIELD(appInfo_tag, FileFormats, 200, 24)", "FIELD(appInfo_tag, FileFormats, 208, 24)")
SECTION = (SOURCES / EXPORTS).read_text() + (SOURCES / LAYOUTS).read_text()

fresh()
expect("nothing changed", None)
replace(EXPORTS, "StartDeviceConnectService", "StartDeviceConnectService\nStopDeviceConnectService")
expect("an export more", None)

fresh()
replace(EXPORTS, "StartDeviceConnectService\n", "")
expect("an export less", "StartDeviceConnectService is not what major version 1 promises")
fresh()
replace(LAYOUTS, "RECORD(formatInfo_tag, 64)", "RECORD(formatInfo_tag, 96)\nFIELD(formatInfo_tag, Codec, 64, 32)")
expect("a member more", "formatInfo_tag is not what major version 1 promises")

fresh()
replace(LAYOUTS, *GROWN)
expect("a member that moved", "appInfo_tag is not what major version 1 promises")
replace(VERSION, "MAJOR 1", "MAJOR 2")
expect("no section of the new version", "promised.txt needs its section")
with (WORK / PROMISED).open("a", encoding="utf-8") as promised:
    promised.write("\nmajor 2\n" + SECTION.replace(*GROWN))
expect("no line in CHANGELOG.md", "CHANGELOG.md does not name appInfo_tag, which version 2 changes")
replace(CHANGES, "## [Unreleased]\n", "## [Unreleased]\n\n- `appInfo_tag`: `FileFormats` moved.\n")
expect("a new version, its section and its line", None)

fresh()
commit("init", "-q")
commit("add", PROMISED)
commit("commit", "-q", "-m", "Promise")
for file in (LAYOUTS, PROMISED):
    replace(file, *GROWN)
expect("a promise that was changed", "the section of version 1 in tests/library/promised.txt was changed")

shutil.rmtree(WORK)
print("interface_refused:", "\n".join(wrong) or "each change as expected")
sys.exit(1 if wrong else 0)
