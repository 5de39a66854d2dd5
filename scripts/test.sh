#!/usr/bin/env bash
# Builds everything and runs all tests: the parts without platform calls natively with sanitizers,
# then the Windows products under Wine.
source "$(dirname "$0")/common.sh"

scripts/build.sh
cmake --preset native >/dev/null
cmake --build --preset native -- --quiet
ctest --preset native --output-on-failure

trap wine_stop EXIT
wine_start -2
wine_start
ctest --test-dir build/mingw --output-on-failure --parallel 2 "$@"
