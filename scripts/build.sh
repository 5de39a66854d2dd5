#!/usr/bin/env bash
# Builds the Windows products and their tests into build/mingw/bin, or only the targets named.
source "$(dirname "$0")/common.sh"

scripts/setup.sh
mkdir -p build
cmake --preset mingw >build/configure.log 2>&1 || {
    cat build/configure.log
    exit 1
}
cmake --build --preset mingw ${1:+--target "$@"} -- --quiet
