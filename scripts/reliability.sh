#!/usr/bin/env bash
# What updates leave behind when power, the program, the disk or the device fail them, over every
# kind of flash: the long form of the tests, and the table of what they counted. Takes a while.
# Usage: scripts/reliability.sh     writes docs/reliability.md; fails when a case failed
source "$(dirname "$0")/common.sh"

scripts/build.sh vxmgmt_system_tests
wine_start
trap wine_stop EXIT
export VXMGMT_RELIABILITY=1
export VXMGMT_RELIABILITY_ROWS=$root/build/reliability.rows
rm -f "$VXMGMT_RELIABILITY_ROWS"
failed=
run vxmgmt_system_tests.exe --gtest_brief=1 '--gtest_filter=SystemReliability.*' </dev/null ||
    failed=1
tests/system/full_disk.sh "$bin" || failed=1

table() {
    echo "| Flash | What happens | Cases | Failures | Seconds |"
    echo "|---|---|---:|---:|---:|"
    awk -F';' '{
        printf "| %s | %s | %d | %d | %d |\n", $1, $2, $3, $4, $5
        cases += $3; failures += $4; seconds += $5
    } END { printf "| all | | %d | %d | %d |\n", cases, failures, seconds; exit failures != 0 }' \
        "$VXMGMT_RELIABILITY_ROWS"
}
rows=$(table) || failed=1
sed '/^| Flash/,$d' docs/reliability.md >build/reliability.md
{
    cat build/reliability.md
    echo "$rows"
    echo
    echo "Measured on $(date -u +%Y-%m-%d) on $(nproc) cores, under $(wine --version 2>/dev/null)."
} >docs/reliability.md
echo "$rows"
[ -z "$failed" ]
