#!/usr/bin/env python3
"""The cost of kestratrace for the programs that write debug lines, compared with the least possible reader. One round
runs both readers, one after the other; the ratio is that of a round. If the machine is busy with other work, run the
script with `chrt -f 10`: most of a line's time is the wake-ups between three processes.

usage: trace_price.py [LINES [ROUNDS]]     after: cmake --build --preset release --target bench_trace kestratrace
"""
import pathlib
import statistics
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
BIN, PREFIX = ROOT / "build/release/bin", ROOT / "build/bench/trace-wine"
LOG = ROOT / "build/bench/trace.log"
READERS = {
    "bare reader": ["bench_trace.exe", "floor"],
    "lines, --file": ["kestratrace.exe", "--file", f"Z:{LOG}"],
    "--json --file": ["kestratrace.exe", "--json", "--file", f"Z:{LOG}"],
    "--arrivals --file": ["kestratrace.exe", "--arrivals", "--file", f"Z:{LOG}"],
}


def in_wine(*command: str) -> list[str]:
    return ["bash", "-c", f'. {ROOT}/scripts/wine.sh; wine_in "$0" timeout 300 wine "$@"', str(PREFIX), *command]


def milliseconds(reader: list[str], lines: str) -> float:
    LOG.unlink(missing_ok=True)
    running = subprocess.Popen(in_wine(str(BIN / reader[0]), *reader[1:]), stdout=subprocess.DEVNULL)
    written = subprocess.run(in_wine(str(BIN / "bench_trace.exe"), "write", lines), capture_output=True, check=True)
    subprocess.run(in_wine("taskkill", "/f", "/im", reader[0]), capture_output=True, check=True)
    running.wait()
    return float(written.stdout)


def main() -> int:
    lines, rounds = (sys.argv[1:] + ["2000", "5"][len(sys.argv) - 1:])[:2]
    prefix = [str(ROOT / "scripts/test-prefix.sh")]
    PREFIX.parent.mkdir(parents=True, exist_ok=True)
    subprocess.run([*prefix, "begin", str(PREFIX)], check=True)
    try:
        taken = {name: [] for name in READERS}
        for _ in range(int(rounds)):
            for name, reader in READERS.items():
                taken[name].append(milliseconds(reader, lines))
    finally:
        subprocess.run([*prefix, "end", str(PREFIX)], check=True)
    floor = taken["bare reader"]
    for name, times in taken.items():
        ratios = [time / least for time, least in zip(times, floor)]
        print(f"{name:20} {statistics.median(times) * 1000 / int(lines):8.1f} us a line"
              f"   median ratio {statistics.median(ratios):.2f}   {min(ratios):.2f} to {max(ratios):.2f}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
