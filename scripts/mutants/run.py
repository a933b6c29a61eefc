#!/usr/bin/env python3
"""Runs the mutants of each room: see scripts/mutants.sh, which prepares the trees for this script.

usage: run.py TREE BUILD NUMBER SEED [ROOM]
       run.py --rooms
"""
import pathlib
import subprocess
import sys
import time

from mutations import choose

ROOT = pathlib.Path(__file__).resolve().parents[2]
GOAL = 0.95
# For each room the programs that test it, the quickest first. A program of the system layer gets its own prefix.
ROOMS = {
    "foundation": ["foundation_tests", "registry_tests", "launcher_tests"],
    "legacy": ["legacy_tests", "launcher_tests", "registry_tests"],
    "registry": ["registry_tests", "library_tests", "cost_tests", "launcher_tests"],
    "service": ["service_tests", "volume_tests", "library_tests", "cost_tests"],
    "launcher": ["launcher_tests", "library_tests", "cost_tests"],
    "trackers/volume": ["volume_tests", "cost_tests", "system_card_tests"],
    "trackers/wia": ["wia_tests", "imaging/wia_system_tests"],
    "trackers/still_image": ["imaging/still_image_tests", "imaging/still_image_system_tests"],
    "trackers/mox": ["mox_tests", "mox_system_tests"],
    "tools": ["tools_tests", "system_kestractl_tests", "system_kestractl_check_tests", "system_trace_viewer_tests"],
    "boot": ["system_exit_codes_tests", "system_start_tests", "system_default_switch_tests", "system_session_end_tests",
             "system_console_tests", "system_folders_tests", "system_boot_window_tests", "system_card_tests"],
}
LONGEST = {"run": 120, "own": 300}  # seconds


def build(folder: pathlib.Path, programs: list[str]) -> bool:
    done = subprocess.run(["cmake", "--build", folder, "--target", *(pathlib.Path(name).name for name in programs)],
                          capture_output=True)
    return done.returncode == 0


def passes(folder: pathlib.Path, program: str) -> bool:
    action = "own" if "system" in program else "run"
    done = subprocess.run([ROOT / "scripts/test-prefix.sh", action, folder / "wine", str(LONGEST[action]),
                           folder / "bin" / f"{program}.exe", "--gtest_fail_fast", "--gtest_brief=1"],
                          capture_output=True, stdin=subprocess.DEVNULL)
    return done.returncode == 0


def equivalents() -> set[str]:
    lines = (ROOT / "scripts/mutants/equivalent.txt").read_text(encoding="utf-8").splitlines()
    return {line for line in lines if line and not line.startswith("#")}


class Room:
    def __init__(self, name: str, tree: pathlib.Path, folder: pathlib.Path):
        self.name, self.tree, self.folder = name, tree, folder
        self.caught = self.same = 0
        self.gaps = []

    def fate(self, mutation, text: str) -> str | None:
        """The test that detected it; "" if none did; None if it does not compile."""
        (self.tree / mutation.file).write_text(mutation.apply(text), encoding="utf-8")
        try:
            if not build(self.folder, ROOMS[self.name]):
                return None
            return next((program for program in ROOMS[self.name] if not passes(self.folder, program)), "")
        finally:
            (self.tree / mutation.file).write_text(text, encoding="utf-8")

    def run(self, number: int, seed: int):
        known = equivalents()
        for mutation in choose(self.tree, self.name, seed):
            if self.caught + self.same + len(self.gaps) == number:
                break
            text = (self.tree / mutation.file).read_text(encoding="utf-8")
            if mutation.name(text) in known:
                self.same += 1
                continue
            begin = time.monotonic()
            caught = self.fate(mutation, text)
            if caught is None:
                continue
            self.caught += bool(caught)
            self.gaps += [] if caught else [mutation.name(text)]
            print(f"   {mutation}: {caught or 'NOT CAUGHT'} ({time.monotonic() - begin:.0f} s)", flush=True)

    def row(self) -> str:
        tried = self.caught + len(self.gaps)
        return f"| {self.name} | {tried + self.same} | {self.caught} | {self.same} | {len(self.gaps)} | {100 * self.caught / max(1, tried):.1f}% |"


def main() -> int:
    if sys.argv[1:] == ["--rooms"]:
        print("\n".join(ROOMS))
        return 0
    tree, folder, number, seed = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), int(sys.argv[3]), int(sys.argv[4])
    names = sys.argv[5:] or list(ROOMS)
    if not set(names) <= set(ROOMS):
        print(f"no such room: {names[0]}", file=sys.stderr)
        return 2
    print(f"KESTRABOOT_SEED={seed}: {number} mutants of each of {len(names)} rooms")
    rooms = [Room(name, tree, folder) for name in names]
    for room in rooms:
        if not build(folder, ROOMS[room.name]) or not all(passes(folder, program) for program in ROOMS[room.name]):
            print(f"the tests of {room.name} fail without a mutant")
            return 1
        print(f"== {room.name}", flush=True)
        room.run(number, seed)
    print("\n| room | mutants | caught | equivalent | gaps | caught of the others |\n|---|---|---|---|---|---|")
    print("\n".join(room.row() for room in rooms))
    print("\n".join(["", "Not caught:", *(gap for room in rooms for gap in room.gaps)]))
    wanting = [room.name for room in rooms if room.caught < GOAL * (room.caught + len(room.gaps))]
    if wanting:
        print(f"under {GOAL:.0%}: {', '.join(wanting)}")
    return 1 if wanting else 0


if __name__ == "__main__":
    sys.exit(main())
