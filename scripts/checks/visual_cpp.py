#!/usr/bin/env python3
"""Checks the product for Visual C++ as far as possible without a Windows SDK. Clang, with Microsoft's dialect
(/permissive-) and ABI, reads the whole product with MinGW's headers of Windows and GCC's standard library. The records
and the interface slots that cross the boundary of a plugin must have the same layout as with MinGW. docs/compilers.md
explains what this proves.

usage: visual_cpp.py [--layouts] [GXX]     GXX: the MinGW compiler whose headers are used
       --layouts                           only the comparison of layouts
"""
import concurrent.futures
import difflib
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
MINGW, MICROSOFT = "w64-mingw32", "pc-windows-msvc"
ROOMS = ["boot", "foundation", "launcher", "legacy", "registry", "samples", "service", "tools", "trackers"]
HOSTS = {"boot", "samples", "tools"}  # these import what the others export
DEFINES = ["UNICODE", "_UNICODE", "WIN32_LEAN_AND_MEAN", "NOMINMAX", "_WIN32_WINNT=0x0600"]
# Microsoft's dialect as its driver sets it for /permissive-, and each extension of Microsoft's is an error.
DIALECT = ["-fms-compatibility", "-fms-extensions", "-fms-compatibility-version=19.33", "-fno-delayed-template-parsing",
           "-foperator-names", "-Wall", "-Wextra", "-Wpedantic", "-Wmicrosoft", "-Werror"]
# MinGW's headers must still recognise the compiler.
HEADERS_KNOW = ["-U_MSC_VER", "-U_MSC_FULL_VER", "-fgnuc-version=12.2", "-D__MINGW32__", "-D__MINGW64__",
                "-D__STRICT_ANSI__", "-D__declspec=__declspec"]

# The records that the library exchanges with a plugin, with TWAIN or with a host.
RECORDS = [*("kestraboot::mox::" + name for name in (
    "Identifier", "PluginDescriptor", "SourceInfo", "DeviceRecord", "IFxBase", "ICallbackInterface",
    "IPluginDescriptor", "ISourceManager", "IEnum", "IEnumSourceManager")),
    "kestraboot::twain::TW_VERSION", "kestraboot::twain::TW_IDENTITY",
    "formatInfo_tag", "appInfo_tag", "CKestraBootInformationHandler", "CKestraBootCommandHandler"]
# The classes whose function tables others call: both sides of a plugin, and the WIA callback.
IMPLEMENTERS = ["samples/mox_plugin/sample_plugin.cpp", "samples/mox_plugin/sample_source.cpp",
                "trackers/mox/callback_interface.cpp", "trackers/mox/source_enumerator.cpp",
                "trackers/wia/wia_device_tracker.cpp"]


def output_of(*command: str) -> str:
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.strip()


class Compiler:
    """Clang for one of the two families, with the headers of MinGW's compiler."""

    def __init__(self, family: str, gxx: str, work: pathlib.Path):
        self.family, self.work = family, work
        target = output_of(gxx, "-dumpmachine")
        gcc = pathlib.Path(output_of(gxx, "-print-libgcc-file-name")).parent / "include" / "c++"
        clang = pathlib.Path(output_of("clang++", "-print-resource-dir")) / "include"
        self.command = ["clang++", f"--target=x86_64-{family}", "-std=c++20", "-nostdinc", "-I.", "-Iinclude"]
        for library in ("CLI", "nlohmann"):  # the tools' libraries, without the rest of their folder
            link = work / "tool_libraries" / library
            link.parent.mkdir(exist_ok=True)
            if not link.exists():
                link.symlink_to(f"/usr/include/{library}")
        folders = (gcc, gcc / target, clang, f"/usr/{target}/include", work / "tool_libraries")
        self.command += [f"-isystem{folder}" for folder in folders]
        self.command += [f"-D{name}" for name in DEFINES]
        if family == MICROSOFT:
            self.command += DIALECT + HEADERS_KNOW

    def run(self, *arguments) -> tuple[str, str]:
        """Its output and its diagnostics."""
        run = subprocess.run([*self.command, *map(str, arguments)], cwd=ROOT, capture_output=True, text=True)
        failed = "" if run.returncode == 0 else f"clang++ exited with {run.returncode}\n"
        return run.stdout, run.stderr + failed

    def dump(self, *arguments) -> str:
        said, complaint = self.run("-DKESTRABOOT_BUILDING_LIBRARY", *arguments)
        if complaint:
            sys.exit(f"visual_cpp: for {self.family}, {arguments[-1]}:\n{complaint}")
        return said

    def layouts(self) -> dict[str, list[str]]:
        """The members of each record with their offsets, its size and its alignment."""
        source = self.work / "records.cpp"
        source.write_text('#include "kestraboot/kestraboot.h"\n#include "kestraboot/mox_plugin.h"\n'
                          '#include <windows.h>\n#include "trackers/still_image/twain.h"\n'
                          + "".join(f"static_assert(sizeof({name}) != 0);\n" for name in RECORDS))
        found = {}
        for dump in self.dump("-fsyntax-only", "-Xclang", "-fdump-record-layouts", source).split("\n\n"):
            lines = [re.sub("vftable|vtable", "table", line) for line in dump.splitlines() if " | " in line]
            name = re.sub(r"^.*\| (?:class|struct|union) | \(empty\)$", "", lines[0]) if lines else ""
            if name in RECORDS:
                size = re.search(r"\[sizeof=(\d+).*?\balign=(\d+)", dump, re.DOTALL)
                found[name] = [re.sub(r"\(.* table pointer\)", "(table)", line) for line in lines if "=" not in line]
                found[name].append(f"size {size.group(1)}, alignment {size.group(2)}")
        return found

    def tables(self) -> dict[str, list[str]]:
        """The functions of each of our classes and interfaces, with their slots."""
        found = {}
        for source in IMPLEMENTERS:
            said = self.dump("-S", "-emit-llvm", "-o", os.devnull, "-Xclang", "-fdump-vtable-layouts", source)
            for owner, slots in re.findall(r"^VF?[Tt]able indices for '([^'\n]*)' [^\n]*\n(.*?)\n\n", said,
                                           re.MULTILINE | re.DOTALL):
                if owner.startswith(("kestraboot::", "(anonymous namespace)::", "Sample")):
                    found[owner] = [line for line in slots.splitlines() if " | " in line]
        return found


def differences(what: str, ours: dict[str, list[str]], theirs: dict[str, list[str]]) -> list[str]:
    wrong = []
    for name in sorted(ours.keys() | theirs.keys()):
        if ours.get(name) != theirs.get(name):
            wrong.append(f"{what} of {name} differs:")
            wrong += difflib.unified_diff(ours.get(name, []), theirs.get(name, []), "MinGW", "Visual C++", lineterm="")
    return wrong


def compare_layouts(gxx: str, work: pathlib.Path) -> list[str]:
    both = [Compiler(family, gxx, work) for family in (MINGW, MICROSOFT)]
    ours, theirs = (compiler.layouts() for compiler in both)
    wrong = [f"{name} was not laid out" for name in RECORDS if name not in ours]
    wrong += differences("the layout", ours, theirs)
    our_tables, their_tables = (compiler.tables() for compiler in both)
    wrong += [] if our_tables else ["no table of functions was found"]
    wrong += differences("the table", our_tables, their_tables)
    slots = sum(map(len, our_tables.values()))
    print(f"visual_cpp: {len(ours)} records and {slots} functions of {len(our_tables)} tables have the same layout for both "
          f"families" if not wrong else "visual_cpp: the families differ")
    return wrong


def read_in_dialect(gxx: str, work: pathlib.Path) -> list[str]:
    compiler = Compiler(MICROSOFT, gxx, work)
    (work / "kestraboot").mkdir()
    (work / "kestraboot" / "c_runtime.h").write_text(
        "#ifdef _UCRT\n#define KESTRABOOT_FOR_UCRT 1\n#else\n#define KESTRABOOT_FOR_UCRT 0\n#endif\n")
    (work / "kestraboot" / "build.h").write_text("".join(
        f'#define KESTRABOOT_BUILD_{name} ""\n' for name in ("COMMIT", "COMPILER", "RUNTIME", "TEXT")))
    sources = sorted(file for room in ROOMS for file in (ROOT / room).rglob("*.cpp"))
    folders = sorted({file.parent for file in sources})
    # The headers of Windows and of the standard library, read once, because they take most of the time.
    words = "".join(file.read_text() for room in ROOMS for file in (ROOT / room).rglob("*.[ch]*") if file.is_file())
    (work / "all.h").write_text("#include <windows.h>\n" + "".join(f"#include <{name}>\n" for name in sorted(set(
        re.findall(r"^#include <([a-z_]+)>$", words, re.MULTILINE)))))
    _, complaint = compiler.run("-x", "c++-header", work / "all.h", "-o", work / "all.pch")
    if complaint:
        return [complaint]

    def read(folder: pathlib.Path) -> str:
        """Reads a folder's files as one, as scripts/checks/lint.py does, so that it reads their includes once."""
        one = work / (str(folder.relative_to(ROOT)).replace("/", "_") + ".cpp")
        one.write_text("".join(f'#line 1 "{file}"\n{file.read_text()}' for file in sources if file.parent == folder))
        kind = ["-I", work] if folder.relative_to(ROOT).parts[0] in HOSTS else ["-DKESTRABOOT_BUILDING_LIBRARY"]
        if folder.is_relative_to(ROOT / "samples" / "simulators"):
            kind.append("-DCOM_STDMETHOD_CAN_THROW")  # as in its CMakeLists.txt
        return compiler.run("-fsyntax-only", "-include-pch", work / "all.pch", *kind, "-iquote", folder, one)[1]

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        wrong = [said for said in pool.map(read, folders) if said]
    print(f"visual_cpp: {len(sources)} files in Microsoft's dialect, {len(wrong)} of {len(folders)} folders wrong")
    return wrong


def main() -> int:
    arguments = sys.argv[1:]
    alone = "--layouts" in arguments
    gxx = ([each for each in arguments if each != "--layouts"] or ["x86_64-w64-mingw32-g++-posix"])[0]
    with tempfile.TemporaryDirectory() as folder:
        work = pathlib.Path(folder)
        wrong = compare_layouts(gxx, work)
        if not alone:
            wrong += read_in_dialect(gxx, work)
    print("\n".join(wrong))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
