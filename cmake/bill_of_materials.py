#!/usr/bin/env python3
"""Writes the bill of materials of an installation as SPDX 2.3, in JSON: each binary with its checksums, and the
packages that they come from, with version, licence and the place of their sources.

    bill_of_materials.py FOLDER NAME VERSION COMMIT SECONDS-SINCE-1970 DLL ...

FOLDER is the installation; DLL is the build's path of each DLL of the runtime: Debian knows the package of that file.
"""
import datetime
import hashlib
import json
import pathlib
import re
import subprocess
import sys

folder, name, version, commit, seconds, *dlls = sys.argv[1:]
root = pathlib.Path(folder)

GCC_LICENCE = "GPL-3.0-or-later WITH GCC-exception-3.1"
THREADS_LICENCE = "MIT AND BSD-3-Clause"
RUNTIME = {  # DLL: its description, its licence
    "libstdc++-6.dll": ("libstdc++", GCC_LICENCE),
    "libgcc_s_seh-1.dll": ("libgcc", GCC_LICENCE),
    "libwinpthread-1.dll": ("winpthreads", THREADS_LICENCE),
}
HEADERS = {  # of the libraries that are compiled into the tools: the description, the licence
    "/usr/include/CLI/CLI.hpp": ("CLI11", "BSD-3-Clause"),
    "/usr/include/nlohmann/json.hpp": ("nlohmann-json", "MIT"),
}
TOOLS = ("kestractl.exe", "kestratrace.exe")
LIST = "sbom.spdx.json"
UNKNOWN = "NOASSERTION"  # the standard's word for an unknown value


def dpkg_query(*arguments):
    return subprocess.run(["dpkg-query", *arguments], check=True, capture_output=True, text=True).stdout


def debian(path):
    """Package, version and the place of the sources of an installed file; unknown on a system other than Debian."""
    try:
        package = dpkg_query("-S", str(pathlib.Path(path).resolve())).partition(":")[0]
        packaged, source, source_version, built_using = dpkg_query(
            "-W", "-f", "${Version}\t${source:Package}\t${source:Version}\t${Built-Using}", package).split("\t")
    except (OSError, subprocess.CalledProcessError):
        return UNKNOWN, UNKNOWN, UNKNOWN
    # Debian's cross compiler is built from the sources of another package, GCC's own.
    other = re.match(r"(\S+) \(= (\S+)\)", built_using)
    if other:
        source, source_version = other.groups()
    return package, packaged, f"https://snapshot.debian.org/package/{source}/{source_version}/"


def identifier(kind, text):
    return f"SPDXRef-{kind}-" + re.sub(r"[^A-Za-z0-9.]+", "-", text).strip("-")


files, sha1s, relationships = [], [], []
for path in sorted(found for found in root.rglob("*") if found.is_file() and found.name != LIST):
    content = path.read_bytes()
    sha1 = hashlib.sha1(content).hexdigest()
    inside = path.relative_to(root).as_posix()
    licence = RUNTIME[path.name][1] if path.name in RUNTIME else UNKNOWN
    files.append({
        "SPDXID": identifier("File", inside),
        "fileName": f"./{inside}",
        "fileTypes": ["BINARY" if inside.startswith(("bin/", "lib/lib", "samples/simulators/bin/")) else "TEXT"],
        "checksums": [{"algorithm": "SHA1", "checksumValue": sha1},
                      {"algorithm": "SHA256", "checksumValue": hashlib.sha256(content).hexdigest()}],
        "licenseConcluded": licence,
        "licenseInfoInFiles": [UNKNOWN],
        "copyrightText": UNKNOWN,
    })
    sha1s.append(sha1)
    relationships.append(("SPDXRef-Package", "CONTAINS", files[-1]["SPDXID"]))

packages = [{
    "SPDXID": "SPDXRef-Package",
    "name": "kestraboot",
    "versionInfo": version,
    "packageFileName": f"{name}.zip",
    "supplier": "Organization: Corvane",
    "downloadLocation": UNKNOWN,
    "filesAnalyzed": True,
    "packageVerificationCode": {
        "packageVerificationCodeValue": hashlib.sha1("".join(sorted(sha1s)).encode()).hexdigest(),
        "packageVerificationCodeExcludedFiles": [f"./{LIST}"],
    },
    "licenseInfoFromFiles": [UNKNOWN],
    "sourceInfo": f"commit {commit}",
    "licenseConcluded": UNKNOWN,
    "licenseDeclared": UNKNOWN,
    "copyrightText": UNKNOWN,
}]
def add_package(path, title, licence):
    """Lists the package that a file of this system comes from. Returns its identifier."""
    package, packaged, source = debian(path)
    packages.append({
        "SPDXID": identifier("Package", title),
        "name": title,
        "versionInfo": packaged,
        "supplier": "Organization: Debian",
        "downloadLocation": source,
        "filesAnalyzed": False,
        "sourceInfo": f"Debian's package {package}",
        "licenseConcluded": licence,
        "licenseDeclared": licence,
        "copyrightText": UNKNOWN,
    })
    return packages[-1]["SPDXID"]


for path in dlls:
    dll = pathlib.Path(path).name
    added = add_package(path, *RUNTIME[dll])
    relationships.append((identifier("File", f"bin/{dll}"), "GENERATED_FROM", added))
    relationships.append(("SPDXRef-Package", "DEPENDS_ON", added))
for header, what in HEADERS.items():
    if pathlib.Path(header).exists():
        added = add_package(header, *what)
        relationships += [(identifier("File", f"bin/{tool}"), "STATIC_LINK", added) for tool in TOOLS]

moment = datetime.datetime.fromtimestamp(int(seconds), datetime.timezone.utc)
contents = hashlib.sha256("".join(sorted(sha1s)).encode()).hexdigest()
document = {
    "spdxVersion": "SPDX-2.3",
    "dataLicense": "CC0-1.0",
    "SPDXID": "SPDXRef-DOCUMENT",
    "name": name,
    # Nothing is at that address: it only distinguishes this list from lists of other contents.
    "documentNamespace": f"https://corvane.invalid/{name}/{contents}",
    "creationInfo": {
        "created": moment.strftime("%Y-%m-%dT%H:%M:%SZ"),
        "creators": ["Organization: Corvane", f"Tool: kestraboot-build-{version}"],
    },
    "packages": packages,
    "files": files,
    "relationships": [
        {"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}
        for one, kind, other in [("SPDXRef-DOCUMENT", "DESCRIBES", "SPDXRef-Package"), *relationships]
    ],
}
(root / LIST).write_text(json.dumps(document, indent=2) + "\n")
