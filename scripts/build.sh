#!/usr/bin/env bash
# Builds the Windows products into build/mingw/bin.
source "$(dirname "$0")/common.sh"

scripts/setup.sh
mkdir -p build
cmake --preset mingw >build/configure.log 2>&1 || {
    cat build/configure.log
    exit 1
}
cmake --build --preset mingw -- --quiet
