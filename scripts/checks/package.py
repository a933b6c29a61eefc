#!/usr/bin/env python3
"""Checks the archive that cpack made: it contains the listed files and nothing else, nothing in it names a folder of the
machine that built it, and all versions in it are the same.

usage: package.py ARCHIVE LISTING SOURCES BUILD CONFIG [FURTHER-FILE ...]
"""
import hashlib
import pathlib
import re
import struct
import sys
import zipfile

RUNTIME = {"libstdc++-6.dll", "libgcc_s_seh-1.dll", "libwinpthread-1.dll"}  # with versions of their own
FIXED_VERSION = b"\xbd\x04\xef\xfe"  # verrsrc.h: VS_FFI_SIGNATURE


def version_of(header: str) -> str:
    return ".".join(
        re.search(rf"^#define KESTRABOOT_VERSION_{part} (\d+)$", header, re.MULTILINE).group(1)
        for part in ("MAJOR", "MINOR", "PATCH")
    )


def listed(listing: pathlib.Path, sources: pathlib.Path, config: str, files: dict[str, bytes]) -> set[str]:
    names = set()
    for line in listing.read_text().splitlines():
        if line.startswith("= "):
            folder = line[2:]
            names |= {f.relative_to(sources).as_posix() for f in (sources / folder).rglob("*") if f.is_file()}
        elif line.startswith("+ "):
            names |= {line[2:], *(name for name in files if name.startswith(line[2:].rpartition("/")[0] + "/"))}
        elif line and line[0] != "#":
            names.add(line.replace("%config%", config.lower()))
    if (sources / "CHANGELOG.md").is_file():
        names.add("CHANGELOG.md")
    return names


def resource_version(program: bytes) -> str | None:
    """The version of a program's resource: the number, if the text beside it is the same."""
    start = program.find(FIXED_VERSION, max(0, program.find("VS_VERSION_INFO".encode("utf-16-le"))))
    if start < 0:
        return None
    minor, patch = struct.unpack_from("<II", program, start + 8)
    number = f"{minor >> 16}.{minor & 0xFFFF}.{patch >> 16}"
    for name in ("FileVersion", "ProductVersion"):
        key = (name + "\0").encode("utf-16-le")
        at = program.find(key)
        text = program[at + len(key):at + len(key) + 2 * 24].decode("utf-16-le", "replace").lstrip("\0").split("\0")[0]
        if text != number:
            return f"{number} and {name} {text!r}"
    return number


def told_versions(files: dict[str, bytes], archive: pathlib.Path, top: str):
    """Every place in and around the archive that names a version, with that version."""
    kind = "-win64-ucrt" if b"#define KESTRABOOT_FOR_UCRT 1" in files["include/kestraboot/c_runtime.h"] else "-win64"
    yield "the archive's name", archive.name.removeprefix("kestraboot-").removesuffix(kind + ".zip")
    yield "its folder", top.removeprefix("kestraboot-").removesuffix(kind)
    for name, data in files.items():
        base = pathlib.PurePath(name).name
        if base in RUNTIME or base in {"viewer.exe", "sample_plugin.mox", "boot_actions.dll"}:  # samples have no version of their own
            continue
        if name.startswith("bin/"):
            yield name, resource_version(data)
    text = {name: data.decode("utf-8", "replace") for name, data in files.items() if not name.startswith("bin/")}
    yield "VERSION.txt", text["VERSION.txt"].split()[1]
    for name, pattern in (
        ("lib/cmake/kestraboot/kestrabootConfigVersion.cmake", r'set\(PACKAGE_VERSION "([^"]*)"'),
        ("lib/cmake/kestraboot/kestrabootConfig.cmake", r"^# kestraboot (\S+):"),
        ("lib/pkgconfig/kestraboot.pc", r"^Version: (\S+)$"),
        ("reference/index.html", r'id="projectnumber">&#160;([^<]+)<'),
    ):
        if name in text:
            found = re.search(pattern, text[name], re.MULTILINE)
            yield name, found.group(1) if found else None
    newest = re.search(r"^## \[?([^\]\s]+)", text.get("CHANGELOG.md", ""), re.MULTILINE)
    if newest and newest.group(1) != "Unreleased":
        yield "CHANGELOG.md", newest.group(1)
    for name, words in text.items():
        if name.startswith("docs/") or name == "README.md":
            for version in re.findall(r"\bkestraboot[- ](\d+\.\d+\.\d+)", words):
                yield name, version


def main() -> int:
    archive, listing, sources, build = (pathlib.Path(a) for a in sys.argv[1:5])
    config, further = sys.argv[5], set(sys.argv[6:])
    with zipfile.ZipFile(archive) as opened:
        names = [n for n in opened.namelist() if not n.endswith("/")]
        tops = {n.partition("/")[0] for n in names}
        files = {n.partition("/")[2]: opened.read(n) for n in names}
    top = min(tops)
    wrong = [f"not one folder at the top: {sorted(tops)}"] if len(tops) != 1 else []

    expected = listed(listing, sources, config, files) | further
    wrong += [f"missing: {name}" for name in sorted(expected - files.keys())]
    wrong += [f"not listed: {name}" for name in sorted(files.keys() - expected)]

    counts_lines = "KESTRABOOT_COVERAGE:BOOL=ON" in (build / "CMakeCache.txt").read_text()
    here = [] if counts_lines else [p for f in {sources.resolve(), build.resolve()}  # the coverage build needs the paths
                                    for p in (str(f).encode(), str(f).encode("utf-16-le"))]
    wrong += [f"{name} names a folder of this machine" for name, data in files.items() if any(p in data for p in here)]

    version = version_of(files["include/kestraboot/version.h"].decode())
    told = list(told_versions(files, archive, top))
    wrong += [f"{where} has version {found}, not {version}" for where, found in told if found != version]

    checksum = archive.with_name(archive.name + ".sha256").read_text().split()[0]
    if checksum != hashlib.sha256(archive.read_bytes()).hexdigest():
        wrong.append("the checksum beside the archive is wrong")

    print(f"package: {archive.name}, {archive.stat().st_size} bytes, {len(files)} files, version {version} found "
          f"{len(told)} times, {len(wrong)} wrong")
    print("\n".join(wrong))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
