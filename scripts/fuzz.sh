#!/usr/bin/env bash
# The code that reads foreign bytes, under libFuzzer. Ends with a table, and in failure if one crashed.
# Usage: scripts/fuzz.sh [SECONDS]   each target for so long (20)
#        scripts/fuzz.sh --runs N    each target N times, then the long forms of tests of random input:
#                                    N requests to the emulated adapters and to their driver, N / 10
#                                    events that eight processes follow
source "$(dirname "$0")/common.sh"

limit=-max_total_time=${1:-20}
runs=
if [ "${1:-}" = --runs ]; then
    runs=$2
    limit=-runs=$runs
fi
rows=()
failed=

# row NAME COMMAND...: runs it with its output in a log, and notes what came of it.
row() {
    local name=$1 log=build/fuzz/$1.log begun=$SECONDS crashes=0 executed
    shift
    echo "== $name"
    "$@" >"$log" 2>&1 </dev/null || {
        crashes=1
        failed=1
        tail -n 40 "$log"
    }
    executed=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    rows+=("$(printf '%-28s %10s %6ss %8s' "$name" "${executed:-${VXMGMT_TEST_ROUNDS:-?}}" \
        $((SECONDS - begun)) $crashes)")
}

scripts/setup.sh --fuzz
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -- --quiet
for fuzzer in build/fuzz/bin/fuzz_*; do
    name=$(basename "$fuzzer")
    folders=("build/fuzz/corpus/$name" "tests/fuzz/seeds/$name")
    mkdir -p "${folders[0]}"
    [ -d "${folders[1]}" ] || unset 'folders[1]'
    row "$name" "$fuzzer" "$limit" -print_final_stats=1 -verbosity=0 \
        -artifact_prefix=build/fuzz/ "${folders[@]}"
done

if [ -n "$runs" ]; then
    cmake --preset native >/dev/null
    cmake --build --preset native --target vxmgmt_pure_tests -- --quiet
    scripts/build.sh vxmgmt_tests vxmgmt_system_tests
    wine_start
    trap wine_stop EXIT
    export VXMGMT_TEST_SEED=${VXMGMT_TEST_SEED:-$RANDOM}
    echo "Random requests of seed $VXMGMT_TEST_SEED"
    export VXMGMT_TEST_ROUNDS=$runs
    row requests_in_process build/native/bin/vxmgmt_pure_tests '--gtest_filter=EmulatorRandom.*'
    row requests_to_driver run vxmgmt_system_tests.exe '--gtest_filter=SystemDriver.Random*'
    VXMGMT_TEST_ROUNDS=$((runs / 10))
    row events_of_eight_processes run vxmgmt_tests.exe \
        '--gtest_filter=EventProcessesTest.EightProcesses*'
fi

printf '\n%-28s %10s %7s %8s\n' target runs time crashes
printf '%s\n' "${rows[@]}"
[ -z "$failed" ]
