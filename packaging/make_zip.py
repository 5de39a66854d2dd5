#!/usr/bin/env python3
"""Packs a folder into a zip file whose bytes depend on nothing but the contents.

Usage: make_zip.py FILE.zip FOLDER    the folder's own name is the first part of every name inside

Entries are sorted and carry the time of SOURCE_DATE_EPOCH.
"""
import os
import sys
import time
import zipfile

EARLIEST = 315532800  # 1980: zip knows no time before it
REGULAR_FILE = 0o100644


def main(archive: str, folder: str) -> None:
    moment = time.gmtime(max(int(os.environ["SOURCE_DATE_EPOCH"]), EARLIEST))[:6]
    above = os.path.dirname(os.path.abspath(folder))
    names = sorted(
        os.path.join(place, name) for place, _, files in os.walk(os.path.abspath(folder)) for name in files
    )
    with zipfile.ZipFile(archive, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as packed:
        for name in names:
            entry = zipfile.ZipInfo(os.path.relpath(name, above), moment)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.create_system = 0
            entry.external_attr = REGULAR_FILE << 16
            with open(name, "rb") as source:
                packed.writestr(entry, source.read())


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
