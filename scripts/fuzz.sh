#!/usr/bin/env bash
# Short libFuzzer runs of the code that reads foreign bytes. Usage: scripts/fuzz.sh [SECONDS each]
source "$(dirname "$0")/common.sh"

scripts/setup.sh --fuzz
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -- --quiet
for fuzzer in build/fuzz/bin/fuzz_*; do
    name=$(basename "$fuzzer")
    echo "== $name"
    mkdir -p "build/fuzz/corpus/$name"
    seeds=tests/fuzz/seeds/$name
    "$fuzzer" -max_total_time="${1:-20}" -print_final_stats=1 -verbosity=0 \
        -artifact_prefix=build/fuzz/         "build/fuzz/corpus/$name" $([ -d "$seeds" ] && echo "$seeds")
done
