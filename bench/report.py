#!/usr/bin/env python3
"""Makes one table and one picture of the measurements.

usage: report.py [--record] FOLDER     FOLDER/rows/*.csv -> table on standard output, FOLDER/table.md,
                                       FOLDER/rows.csv; with --record also docs/speed.md and docs/speed.svg,
                                       which needs matplotlib
       report.py --sources             prints the identity of the sources: the last commit that changed more than
                                       documents, and a hash of the changes since

Rows that were measured from other sources are left out and named on standard error; in that case nothing is recorded.
Exits with 1 if a row misses its goal.
"""
import csv
import functools
import hashlib
import os
import pathlib
import platform
import re
import statistics
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import footprint  # noqa: E402

ROOT = pathlib.Path(__file__).resolve().parents[1]
MISSED = "**no**"
LIBRARY = ROOT / "build/release/bin/kestraboot.dll"
ORDER = ["own-walk", "own-load", "own-poll", "walk", "quiet-walk", "search", "load-information", "launch", "dispatch", "poll", "load", "road",
         "road-without-start"]
TITLES = {
    "own-walk": "a file in a walk, trace line formatted",
    "own-load": "an application loaded (16 formats), with its product's key",
    "own-poll": "an idle poll with {} drives",
    "walk": "media walk, {} files, none matches",
    "quiet-walk": "the same, debug output patched out, {} files",
    "search": "media walk, match in DCIM/100TEST among {} files",
    "load-information": "`LoadInformation`, {} applications + other keys",
    "launch": "`LaunchKestra`, composition alone",
    "dispatch": "dispatch, {} thread(s), 20,000 reports of each",
    "poll": "one idle poll, {} removable drive(s)",
    "load": "loading and unloading the DLL, what it needs {}",
    "road": "card readable to application started",
    "road-without-start": "the same without the start of the process",
}
SIZES = {"load needs": "is there", "load alone": "loaded with it"}


class Row:
    """The measurements of one row at one size: side -> nanoseconds, in the order of the rounds."""

    def __init__(self, name: str, size: str):
        self.name, self.size = name, size
        self.sides: dict[str, list[float]] = {}
        self.goals: dict[str, float] = {}

    def is_own_time(self) -> bool:
        return self.goals["library"] > 0

    def title(self) -> str:
        size = SIZES.get(f"{self.name} {self.size}", re.sub(r"\d+", lambda n: f"{int(n[0]):,}", self.size))
        return TITLES[self.name].format(size)

    def ratios(self, side: str) -> list[float]:
        return [mine / its for mine, its in zip(self.sides["library"], self.sides[side])]


def git(*arguments: str) -> str:
    paths = ["--", ".", ":!docs", ":!*.md"]
    return subprocess.run(["git", "-C", ROOT, *arguments, *paths], capture_output=True, text=True, check=True).stdout


@functools.cache
def sources() -> str:
    if not (ROOT / ".git").exists():
        return "an archive"
    changes = git("diff", "HEAD")
    return git("log", "-1", "--format=%h").strip() + (
        "+" + hashlib.sha256(changes.encode()).hexdigest()[:8] if changes else "")


def read(folder: pathlib.Path) -> tuple[dict[tuple[str, str], Row], list[list[str]], list[str]]:
    """The rows, the counts, and the names of the measurements from other sources."""
    rows: dict[tuple[str, str], Row] = {}
    counted, left_out = [], []
    wanted = ["sources", sources()]
    for file in sorted((folder / "rows").glob("*.csv")):
        lines = list(csv.reader(file.open(encoding="utf-8")))
        if not lines or lines[0] != wanted:
            left_out.append(file.stem)
            continue
        for line in lines:
            if line and line[0] in {"allocations", "memory"}:
                counted.append(line)
            elif len(line) == 6 and line[0] in TITLES:
                row = rows.setdefault((line[0], line[1]), Row(line[0], line[1]))
                row.sides.setdefault(line[2], []).append(float(line[5]))
                row.goals[line[2]] = float(line[3])
    return rows, counted, left_out


def in_order(rows) -> list[Row]:
    def key(row: Row):
        numbers = [int(n) for n in re.findall(r"\d+", row.size)]
        return ORDER.index(row.name), numbers[::-1] if "+" in row.size else numbers, row.size == "alone"
    return sorted(rows.values(), key=key)


def time(nanoseconds: float) -> str:
    for unit, factor in (("ns", 1), ("µs", 1e3), ("ms", 1e6)):
        if nanoseconds < 1000 * factor or unit == "ms":
            return f"{nanoseconds / factor:.3g} {unit}" if nanoseconds < 1000 * factor else f"{nanoseconds / factor:,.0f} ms"
    return ""


def spread(values: list[float], shown) -> str:
    low, middle, high = statistics.quantiles(values, n=4) if len(values) > 1 else values * 3
    return f"{shown(middle)} ({shown(low)} to {shown(high)})"


def verdict(met: bool) -> str:
    return "yes" if met else MISSED


def own_times(rows) -> list[str]:
    own = [row for row in in_order(rows) if row.is_own_time()]
    lines = [f"| {row.title()} | {spread(row.sides['library'], time)} | {time(row.goals['library'])} "
             f"| {verdict(statistics.median(row.sides['library']) <= row.goals['library'])} "
             f"| {len(row.sides['library'])} |" for row in own]
    return ["| own time of | library | goal | met | rounds |", "|---|---|---|---|---|", *lines] if lines else []


def times(rows) -> list[str]:
    lines = ["| row | library | against | its time | ratio | goal | met | rounds |", "|---|---|---|---|---|---|---|---|"]
    for row in in_order(rows):
        for side, goal in row.goals.items():
            if side == "library":
                continue
            ratios = row.ratios(side)
            met = verdict(statistics.median(ratios) <= goal)
            lines.append(f"| {row.title()} | {spread(row.sides['library'], time)} | {side} "
                         f"| {spread(row.sides[side], time)} | {spread(ratios, lambda r: f'{r:.2f}')} "
                         f"| {goal:.2f} | {met} | {len(ratios)} |")
    return lines


def growth(rows) -> list[str]:
    """The growth of the time when the work grows tenfold."""
    lines = []
    for row in in_order(rows):
        smaller = re.sub(r"^(\d+)0(?=\+|$)", r"\1", row.size)
        alone = not row.size.endswith("+10000")
        if row.name in {"walk", "quiet-walk", "load-information"} and alone and smaller != row.size and (row.name, smaller) in rows:
            before = rows[row.name, smaller]
            factors = [statistics.median(row.sides[side]) / statistics.median(before.sides[side])
                       for side in ("library", "floor")]
            lines.append(f"| {row.title()} | {factors[0]:.1f} | {factors[1]:.1f} |")
    return ["| ten times the work, up to | library: times the time | floor |", "|---|---|---|", *lines] if lines else []


def counts(counted) -> list[str]:
    lines = []
    allocations = [line for line in counted if line[0] == "allocations"]
    if allocations:
        lines += ["| allocations | number | at most | met |", "|---|---|---|---|"]
        lines += [f"| {what} | {float(number):.0f} | {most} | {verdict(float(number) <= float(most)) if most else ''} |"
                  for _, what, number, most in allocations]
    memory = [line for line in counted if line[0] == "memory"]
    if memory:
        lines += ["", "| idle host | simulated days of polling | private bytes |", "|---|---|---|"]
        lines += [f"| {side} | {day} | {int(number):,} |" for _, side, day, number in memory]
    return lines


def machine() -> str:
    cpu = re.search(r"model name\s*:\s*(.+)", pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8"))
    wine = subprocess.run(["wine", "--version"], capture_output=True, text=True, check=False).stdout.strip()
    return (f"{os.cpu_count()} × {cpu[1] if cpu else platform.machine()}, Linux {platform.release()}, {wine}; "
            f"load at the end {os.getloadavg()[1]:.1f}; sources {sources()}.")


def record(table: str) -> None:
    page = ROOT / "docs/speed.md"
    text = page.read_text(encoding="utf-8")
    text = re.sub(r"(<!-- measured -->\n).*(<!-- /measured -->)", lambda m: m[1] + "\n" + table + "\n" + m[2], text,
                  flags=re.DOTALL)
    page.write_text(text, encoding="utf-8")


def main() -> int:
    if "--sources" in sys.argv:
        print(sources())
        return 0
    folder = pathlib.Path(sys.argv[-1])
    rows, counted, left_out = read(folder)
    if left_out:
        print("report: left out, measured from other sources: " + ", ".join(left_out), file=sys.stderr)
    if not rows and not counted:
        print("report: nothing was measured yet", file=sys.stderr)
        return 1
    blocks = [block for block in (own_times(rows), times(rows) if rows else [], growth(rows), counts(counted),
                             footprint.table({"kestraboot.dll": str(LIBRARY)}) if LIBRARY.exists() else [])
              if block]
    table = "\n\n".join(["Times are medians, with the quartiles in brackets; a ratio is the median of the rounds' own "
                         "ratios. " + machine(), *("\n".join(block) for block in blocks)]) + "\n"
    print(table)
    (folder / "table.md").write_text(table, encoding="utf-8")
    with (folder / "rows.csv").open("w", encoding="utf-8", newline="") as out:
        writer = csv.writer(out)
        writer.writerow(["row", "size", "side", "goal", "round", "nanoseconds"])
        for row in in_order(rows):
            for side, values in row.sides.items():
                writer.writerows([row.name, row.size, side, row.goals[side] or "", i, v] for i, v in enumerate(values))
    if "--record" in sys.argv and left_out:
        print("report: nothing was recorded", file=sys.stderr)
        return 1
    if "--record" in sys.argv:
        from curves import draw  # no other run needs a plotting library
        record(table)
        draw(rows, ROOT / "docs/speed.svg")
    if MISSED in table:
        print("report: a row misses its goal", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
