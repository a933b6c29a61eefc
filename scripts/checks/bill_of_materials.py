#!/usr/bin/env python3
"""Checks the bill of materials of an unpacked archive. Its members, formats and references must follow SPDX 2.3
(https://spdx.github.io/spdx-spec/v2.3/). It must list every file with its checksums, and the origin of each DLL of the
runtime and of each library in the tools.

usage: bill_of_materials.py UNPACKED-FOLDER
"""
import hashlib
import json
import pathlib
import re
import sys

FOREIGN = ("libstdc++", "libgcc", "winpthreads", "CLI11", "nlohmann-json")
IDENTIFIER = r"SPDXRef-[A-Za-z0-9.-]+"
DOCUMENT = {
    "spdxVersion": r"SPDX-2\.3", "dataLicense": r"CC0-1\.0", "SPDXID": "SPDXRef-DOCUMENT", "name": r".+",
    "documentNamespace": r"https?://[^#\s]+",
}
PACKAGE = {
    "SPDXID": IDENTIFIER, "name": r".+", "downloadLocation": r"NOASSERTION|NONE|https://\S+", "versionInfo": r".+",
    "licenseConcluded": r".+", "licenseDeclared": r".+", "copyrightText": r".+", "supplier": r"(Organization|Person): .+",
}
FILE = {"SPDXID": IDENTIFIER, "fileName": r"\./.+", "licenseConcluded": r".+", "copyrightText": r".+"}
RELATIONSHIP = {
    "spdxElementId": IDENTIFIER, "relatedSpdxElement": IDENTIFIER,
    "relationshipType": r"DESCRIBES|CONTAINS|GENERATED_FROM|DEPENDS_ON|STATIC_LINK",
}


def misses(what: str, members: dict, forms: dict) -> list[str]:
    return [f"{what}: {name} is {members.get(name)!r}" for name, form in forms.items()
            if not isinstance(members.get(name), str) or not re.fullmatch(form, members[name])]


def main() -> int:
    root = pathlib.Path(sys.argv[1])
    document = json.loads((root / "sbom.spdx.json").read_text())
    wrong = misses("document", document, DOCUMENT)
    created = document.get("creationInfo", {}).get("created", "")
    if not re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ", created):
        wrong.append(f"created is {created!r}")

    packages = {package["name"]: package for package in document["packages"]}
    for name, package in packages.items():
        wrong += misses(f"package {name}", package, PACKAGE)
    for name in FOREIGN:
        package = packages.get(name, {})
        if "NOASSERTION" in (package.get("versionInfo", "NOASSERTION"), package.get("downloadLocation", "NOASSERTION"),
                             package.get("licenseConcluded", "NOASSERTION")):
            wrong.append(f"{name}: version, licence or location of the sources is missing")

    listed, sha1s = {}, []
    for entry in document["files"]:
        wrong += misses(f"file {entry.get('fileName')}", entry, FILE)
        sums = {one["algorithm"]: one["checksumValue"] for one in entry["checksums"]}
        listed[entry["fileName"].removeprefix("./")] = sums
        sha1s.append(sums["SHA1"])
    there = {path.relative_to(root).as_posix() for path in root.rglob("*") if path.is_file()} - {"sbom.spdx.json"}
    wrong += [f"not listed: {name}" for name in sorted(there - listed.keys())]
    wrong += [f"listed and missing: {name}" for name in sorted(listed.keys() - there)]
    for name in there & listed.keys():
        content = (root / name).read_bytes()
        if listed[name] != {"SHA1": hashlib.sha1(content).hexdigest(), "SHA256": hashlib.sha256(content).hexdigest()}:
            wrong.append(f"{name}: wrong checksum")
    code = packages["kestraboot"]["packageVerificationCode"]["packageVerificationCodeValue"]
    if code != hashlib.sha1("".join(sorted(sha1s)).encode()).hexdigest():
        wrong.append("the verification code is wrong")

    known = ["SPDXRef-DOCUMENT"] + [one["SPDXID"] for one in document["packages"] + document["files"]]
    wrong += [f"{name}: named twice" for name in {name for name in known if known.count(name) > 1}]
    for relationship in document["relationships"]:
        wrong += misses("relationship", relationship, RELATIONSHIP)
        wrong += [f"a relationship to {relationship[end]}, which does not exist"
                  for end in ("spdxElementId", "relatedSpdxElement") if relationship[end] not in known]

    print(f"bill of materials: {len(packages)} packages, {len(listed)} files, {len(document['relationships'])} "
          f"relationships, {len(wrong)} wrong")
    print("\n".join(wrong))
    return 1 if wrong or not listed else 0


if __name__ == "__main__":
    sys.exit(main())
