#!/usr/bin/env bash
# Builds everything and runs all tests: the parts without platform calls natively with sanitizers,
# then the Windows products under Wine.
# Usage: scripts/test.sh [OPTION OF CTEST...]
#        scripts/test.sh ROOM...    only the tests of these folders of tests/, without CTest
source "$(dirname "$0")/common.sh"

trap wine_stop EXIT

# Builds the programs that have tests of the rooms, and runs those of each in one go.
test_rooms() {
    local room suites=() programs=()
    for room in "$@"; do
        mapfile -t -O ${#suites[@]} suites < <(
            sed -nE 's/^TEST(_F|_P)?\(([A-Za-z0-9]+),.*/\2.*/p' "tests/$room"/*_test.cpp | sort -u)
        case $room in
        tools) programs+=(vxtools_tests) ;;
        emulator | formats) programs+=(vxmgmt_pure_tests) ;;
        system) programs+=(vxmgmt_system_tests) ;;
        *) programs+=(vxmgmt_pure_tests vxmgmt_tests) ;;
        esac
    done
    mapfile -t programs < <(printf '%s\n' "${programs[@]}" | sort -u)
    scripts/build.sh "${programs[@]}"
    wine_start
    for program in "${programs[@]}"; do
        run "$program.exe" --gtest_brief=1 "--gtest_filter=$(IFS=: && echo "${suites[*]}")"
    done
}

if [ $# -gt 0 ] && [ -d "tests/$1" ]; then
    test_rooms "$@"
    exit
fi

scripts/build.sh
cmake --preset native >/dev/null
cmake --build --preset native -- --quiet
ctest --preset native --output-on-failure

machines=3
wine_start
for ((i = 2; i <= machines; ++i)); do wine_start -$i; done
export WINEPREFIX=$root/build/wine
printf -v ids '{"id":"%d"},' $(seq "$machines")
echo '{"version":{"major":1,"minor":0},"local":[{"machines":['"${ids%,}"']}]}' >build/machines.json
ctest --test-dir build/mingw --output-on-failure --resource-spec-file "$PWD/build/machines.json" \
    --parallel "$machines" "$@"
