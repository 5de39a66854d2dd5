#!/usr/bin/env bash
# Makes the reference of the public headers as pages. Fails when an export, parameter, record, field,
# enumeration, value or constant has no documentation; a field's offset is none.
# Usage: scripts/reference.sh [FOLDER]    (build/reference)
source "$(dirname "$0")/common.sh"

folder=${1:-build/reference}
PYTHONDONTWRITEBYTECODE=1 python3 packaging/reference/parameters.py include/*.h
command -v doxygen >/dev/null || scripts/setup.sh --package
rm -rf "$folder"
mkdir -p "$folder"
doxygen - < <(cat packaging/reference/Doxyfile && echo "OUTPUT_DIRECTORY = \"$folder\"")
