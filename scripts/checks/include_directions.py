#!/usr/bin/env python3
"""Checks that each room includes only the rooms that it may include."""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]

# The rooms that each room may include besides itself. A file of service/ in this list may include trackers too.
MAY_INCLUDE = {
    "include": set(),
    "foundation": {"include"},
    "legacy": {"foundation", "include"},
    "registry": {"legacy", "foundation", "include"},
    "service": {"registry", "foundation", "include"},
    "trackers/volume": {"service", "foundation", "include"},
    "trackers/wia": {"service", "foundation", "include"},
    "trackers/still_image": {"trackers/wia", "service", "foundation", "include"},
    "trackers/mox": {"service", "foundation", "include"},
    "launcher": {"registry", "service", "legacy", "foundation", "include"},
    "boot": {"include"},
    "samples": {"include"},
    "samples/simulators": {"include", "trackers/wia", "trackers/still_image"},
    "tools/common": {"include"},
    "tools/ctl": {"tools/common", "include"},
    "tools/trace": {"tools/trace/channel", "tools/trace/arrivals", "tools/trace/recording", "tools/trace/lines",
                    "tools/common"},
    "tools/trace/channel": {"tools/trace/lines", "tools/common"},
    "tools/trace/arrivals": {"tools/trace/lines", "tools/common"},
    "tools/trace/recording": {"tools/trace/lines", "tools/common"},
    "tools/trace/lines": {"tools/common"},
}
# Rooms whose folders people copy one by one: a file there includes its neighbours without a path.
STAND_ALONE = {"samples", "samples/simulators"}
STARTS_TRACKERS = "service/service_start.cpp"
# The headers of service/ that trackers may include.
SERVICE_FOR_TRACKERS = {"dispatch", "device_kind", "media_sniffer", "volume_file_system", "windows_version"}

INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)


def room_of(path: str) -> str:
    if path.startswith("kestraboot/"):
        return "include"
    folders = path.split("/")[:-1]
    for depth in range(len(folders), 0, -1):  # a room may be inside another one
        if "/".join(folders[:depth]) in MAY_INCLUDE:
            return "/".join(folders[:depth])
    return folders[0] if folders else path


def main() -> int:
    wrong = []
    checked = 0
    for room, allowed in MAY_INCLUDE.items():
        for file in sorted((ROOT / room).rglob("*")):
            name = file.relative_to(ROOT).as_posix()
            if file.suffix not in {".h", ".cpp"} or room_of(name) != room:
                continue
            checked += 1
            for included in INCLUDE.findall(file.read_text(encoding="utf-8")):
                target = room_of(included)
                if room in STAND_ALONE and (file.parent / included).is_file():
                    continue
                if target == room_of(name) or target in allowed or (target == "include" and room == "include"):
                    if not (room.startswith("trackers") and target == "service"):
                        continue
                    if pathlib.PurePath(included).stem in SERVICE_FOR_TRACKERS:
                        continue
                if name == STARTS_TRACKERS and target.startswith("trackers/"):
                    continue
                wrong.append(f"{name} must not include {included}")
    print(f"include directions: {checked} files, {len(wrong)} wrong")
    print("\n".join(wrong))
    return 1 if wrong or checked == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
