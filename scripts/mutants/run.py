#!/usr/bin/env python3
"""Runs the mutants of each room: see scripts/mutants.sh, which prepares the trees for this script.

usage: run.py TREE BUILD NUMBER SEED [ROOM]
       run.py --rooms
"""
import os
import pathlib
import re
import subprocess
import sys
import time

from mutations import choose

ROOT = pathlib.Path(__file__).resolve().parents[2]
GOAL = 0.95
# For each room the programs that test it, the quickest first.
ROOMS = {
    "foundation": ["foundation_tests", "registry_tests", "launcher_tests"],
    "legacy": ["legacy_tests", "launcher_tests", "registry_tests"],
    "registry": ["registry_tests", "cost_tests", "library_tests", "launcher_tests"],
    "service": ["service_tests", "volume_tests", "cost_tests", "library_tests"],
    "launcher": ["launcher_tests", "cost_tests", "library_tests"],
    "trackers/volume": ["volume_tests", "cost_tests", "system_card_tests"],
    "trackers/wia": ["wia_tests", "imaging/wia_system_tests"],
    "trackers/still_image": ["imaging/still_image_tests", "imaging/still_image_system_tests"],
    "trackers/mox": ["mox_tests", "mox_system_tests"],
    "tools": ["tools_tests", "faults.tools_tests", "system_kestractl_tests", "system_kestractl_check_tests",
              "system_trace_viewer_tests"],
    "boot": ["system_exit_codes_tests", "system_start_tests", "system_default_switch_tests", "system_session_end_tests",
             "system_console_tests", "system_folders_tests", "system_boot_window_tests", "system_card_tests"],
}
LONGEST = 600  # seconds for a program
PASSED = re.compile(r"^\[       OK \] \S+ \((\d+) ms\)", re.MULTILINE)
# The first failure, or else the start of the test in which the program ended.
FAILED = re.compile(r"^\[  FAILED  \] ([\w./]+)", re.MULTILINE)
STARTED = re.compile(r"^\[ RUN      \] (\S+)", re.MULTILINE)


class Builds:
    """The folder in which the mutants are built, and the Wine prefix in which their tests run."""

    def __init__(self, folder: pathlib.Path):
        self.folder = folder
        self.longest = {}  # the seconds of the longest test of each program

    def build(self, program: str) -> bool:
        target = pathlib.Path(program).name
        return subprocess.run(["cmake", "--build", self.folder, "--target", target], capture_output=True).returncode == 0

    def programs(self) -> dict:
        """The state of everything that can run."""
        return {file: file.stat().st_mtime_ns for file in (self.folder / "bin").rglob("*") if file.is_file()}

    def begin(self):
        subprocess.run([ROOT / "scripts/test-prefix.sh", "begin", self.folder / "wine"], check=True)

    def run(self, program: str, only: str = "*") -> tuple[bool, str]:
        """Whether its tests pass, and otherwise the one that failed, hung or crashed."""
        system = "system" in program
        limit = 10 + 5 * self.longest.get(program, 60)  # seconds for a test; a mutant that hangs costs this twice
        # On one processor the programs of the system layer wait less for Wine's server.
        done = subprocess.run([*(["taskset", "-c", "0"] if "kestractl" in program else []),
                               ROOT / "scripts/test-prefix.sh", "run", self.folder / "wine", str(LONGEST),
                               self.folder / "bin" / f"{program}.exe", "--gtest_fail_fast", f"--gtest_filter={only}"],
                              capture_output=True, stdin=subprocess.DEVNULL, text=True, errors="replace",
                              env=os.environ | {"KESTRABOOT_LONGEST_TEST": str(limit)})
        if only == "*" and done.returncode == 0:
            longest = max(map(int, PASSED.findall(done.stdout)), default=0) // 1000 + 1
            self.longest[program] = max(longest, self.longest.get(program, 0))
        if done.returncode not in (0, 1) or (system and done.returncode != 0):
            self.begin()  # it can leave processes, and a program of the system layer also keys and drives
        return done.returncode == 0, (FAILED.findall(done.stdout)[:1] or STARTED.findall(done.stdout)[-1:] or ["*"])[0]

    def fails(self, program: str) -> str:
        """The test that fails; "" if none does. It has to fail again, alone or else in a second run of the program."""
        passed, test = self.run(program)
        if passed or (self.run(program, test)[0] and self.run(program)[0]):
            return ""
        return test


def equivalents() -> set[str]:
    lines = (ROOT / "scripts/mutants/equivalent.txt").read_text(encoding="utf-8").splitlines()
    return {line for line in lines if line and not line.startswith("#")}


class Room:
    def __init__(self, name: str, tree: pathlib.Path, builds: Builds):
        self.name, self.tree, self.builds = name, tree, builds
        self.caught = self.same = 0
        self.gaps = []

    def failure(self) -> str:
        """What fails without a mutant; "" if nothing does."""
        for program in ROOMS[self.name]:
            test = self.builds.fails(program) if self.builds.build(program) else "does not compile"
            if test:
                return f"{program} {test}"
        return ""

    def fate(self, mutation, text: str) -> str | None:
        """The test that detected it; "" if none did; None if it does not compile."""
        (self.tree / mutation.file).write_text(mutation.apply(text), encoding="utf-8")
        before = self.builds.programs()
        try:
            for program in ROOMS[self.name]:
                if not self.builds.build(program):
                    return None
                if self.builds.programs() != before:
                    test = self.builds.fails(program)
                    if test:
                        return f"{program} {test}"
            return ""
        finally:
            (self.tree / mutation.file).write_text(text, encoding="utf-8")

    def run(self, number: int, seed: int):
        known, every = equivalents(), choose(self.tree, self.name, seed)
        for name in sorted(known - {mutation.name for mutation in every}):
            if name.startswith(f"{self.name}/"):
                print(f"   equivalent.txt: no such mutant any more: {name}")
        for mutation in every:
            if self.caught + self.same + len(self.gaps) == number:
                break
            if mutation.name in known:
                self.same += 1
                continue
            begin = time.monotonic()
            caught = self.fate(mutation, (self.tree / mutation.file).read_text(encoding="utf-8"))
            if caught is None:
                continue
            self.caught += bool(caught)
            self.gaps += [] if caught else [mutation.name]
            print(f"   {mutation}: {caught or 'NOT CAUGHT'} ({time.monotonic() - begin:.0f} s)", flush=True)

    def row(self) -> str:
        tried = self.caught + len(self.gaps)
        return f"| {self.name} | {tried + self.same} | {self.caught} | {self.same} | {len(self.gaps)} | {100 * self.caught / max(1, tried):.1f}% |"


def main() -> int:
    if sys.argv[1:] == ["--rooms"]:
        print("\n".join(ROOMS))
        return 0
    tree, builds, number, seed = pathlib.Path(sys.argv[1]), Builds(pathlib.Path(sys.argv[2])), int(sys.argv[3]), int(sys.argv[4])
    names = sys.argv[5:] or list(ROOMS)
    if not set(names) <= set(ROOMS):
        print(f"no such room: {names[0]}", file=sys.stderr)
        return 2
    print(f"KESTRABOOT_SEED={seed}: {number} mutants of each of {len(names)} rooms")
    rooms = [Room(name, tree, builds) for name in names]
    for room in rooms:
        failure = room.failure()
        if failure:
            print(f"the tests of {room.name} fail without a mutant: {failure}")
            return 1
        print(f"== {room.name}", flush=True)
        room.run(number, seed)
        failure = room.failure()
        if failure:  # a mutant has changed something outside its own process
            print(f"the tests of {room.name} fail after the mutants: {failure}")
            return 1
    print("\n| room | mutants | caught | equivalent | gaps | caught of the others |\n|---|---|---|---|---|---|")
    print("\n".join(room.row() for room in rooms))
    print("\n".join(["", "Not caught:", *(gap for room in rooms for gap in room.gaps)]))
    wanting = [room.name for room in rooms if room.caught < GOAL * (room.caught + len(room.gaps))]
    if wanting:
        print(f"under {GOAL:.0%}: {', '.join(wanting)}")
    return 1 if wanting else 0


if __name__ == "__main__":
    sys.exit(main())
