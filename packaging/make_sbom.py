#!/usr/bin/env python3
"""Writes the bill of materials of what is packed in a folder: SPDX 2.3 as JSON.

Usage: make_sbom.py VERSION COMMIT FOLDER > FILE

Names what is in the binaries beside our own code, with versions as Debian has them, and every packed
file with its SHA-256. Copies the licences of what it names into FOLDER/licences.
"""
import hashlib
import json
import os
import shutil
import subprocess
import sys
import time

# Debian's package, its name elsewhere, licence, and what it is for.
PARTS = [
    ("libcli11-dev", "CLI11", "BSD-3-Clause", "command lines of the programs"),
    ("nlohmann-json3-dev", "nlohmann-json", "MIT", "JSON of the programs"),
    ("libz-mingw-w64-dev", "zlib", "Zlib", "compression of what vxmgr collects"),
    ("gcc-mingw-w64-x86-64-posix-runtime", "GCC runtime libraries",
     "GPL-3.0-or-later WITH GCC-exception-3.1", "runtime of the compiler"),
    ("mingw-w64-x86-64-dev", "MinGW-w64 runtime", "ZPL-2.1 AND MIT", "C runtime and start-up code"),
]


def version_of(package: str) -> str:
    return subprocess.run(["dpkg-query", "-W", "-f=${Version}", package], check=True,
                          capture_output=True, text=True).stdout


def keep_licences(folder: str) -> None:
    target = os.path.join(folder, "licences")
    os.makedirs(target, exist_ok=True)
    for package, name, _, _ in PARTS:
        shutil.copyfile(f"/usr/share/doc/{package}/copyright",
                        os.path.join(target, name.replace(" ", "-") + ".txt"))
    shutil.copyfile("LICENSE", os.path.join(target, "VXMGMT.txt"))


def part(package: str, name: str, licence: str, about: str) -> dict:
    version = version_of(package)
    return {
        "SPDXID": "SPDXRef-" + package, "name": name, "versionInfo": version,
        "licenseConcluded": licence, "licenseDeclared": licence, "copyrightText": "NOASSERTION",
        "downloadLocation": "NOASSERTION", "filesAnalyzed": False, "comment": about,
        "externalRefs": [{"referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl",
                          "referenceLocator": f"pkg:deb/debian/{package}@{version}"}],
    }


def files_of(folder: str) -> list:
    return sorted(os.path.join(place, name)
                  for place, _, names in os.walk(folder) for name in names)


def file_entry(number: int, path: str, above: str) -> dict:
    with open(path, "rb") as source:
        digest = hashlib.sha256(source.read()).hexdigest()
    return {
        "SPDXID": f"SPDXRef-File-{number}", "fileName": "./" + os.path.relpath(path, above),
        "checksums": [{"algorithm": "SHA256", "checksumValue": digest}],
        "licenseConcluded": "NOASSERTION", "copyrightText": "NOASSERTION",
    }


def main(version: str, commit: str, folder: str) -> None:
    keep_licences(folder)
    name = os.path.basename(folder)
    created = time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime(int(os.environ["SOURCE_DATE_EPOCH"])))
    above = os.path.dirname(os.path.abspath(folder))
    files = [file_entry(number, path, above) for number, path in enumerate(files_of(folder))]
    ours = {
        "SPDXID": "SPDXRef-VXMGMT", "name": "VXMGMT", "versionInfo": version,
        "licenseConcluded": "MIT", "licenseDeclared": "MIT", "downloadLocation": "NOASSERTION",
        "copyrightText": "Copyright (c) 2026 the VXMGMT authors", "filesAnalyzed": False,
    }
    parts = [part(*row) for row in PARTS]
    relations = [("SPDXRef-DOCUMENT", "DESCRIBES", ours["SPDXID"])]
    relations += [(ours["SPDXID"], "STATIC_LINK", each["SPDXID"]) for each in parts]
    relations += [(ours["SPDXID"], "CONTAINS", each["SPDXID"]) for each in files]
    document = {
        "spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT",
        "name": name,
        "documentNamespace": f"https://spdx.org/spdxdocs/{name}-{commit}",
        "creationInfo": {"created": created, "creators": ["Organization: The VXMGMT authors"]},
        "packages": [ours, *parts],
        "files": files,
        "relationships": [
            {"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}
            for one, kind, other in relations
        ],
    }
    json.dump(document, sys.stdout, indent=2)
    print()


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    main(*sys.argv[1:])
