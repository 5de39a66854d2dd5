#!/usr/bin/env bash
# A disk that takes no more: before an update writes anything, then while it writes. A limit on the
# size of files stands for the disk. Usage: full_disk.sh BIN; VXMGMT_RELIABILITY=1 for the long form,
# which adds its rows to the file VXMGMT_RELIABILITY_ROWS.
set -euo pipefail
bin=$1
log=$(mktemp -d)
serial=EMU7740A0001
trap 'wine "$bin/vxemu.exe" stop >"$log/stop" 2>&1 </dev/null || true; rm -rf "$log"' EXIT

cases=0
failures=0
begun=$SECONDS
fail() {
    echo "FAILED: $1"
    tail -n 20 "$log"/*.txt
    failures=$((failures + 1))
}
# row WHAT: counts what follows anew
row() {
    [ -z "${VXMGMT_RELIABILITY_ROWS:-}" ] ||
        echo "banked;$1;$cases;$failures;$((SECONDS - begun))" >>"$VXMGMT_RELIABILITY_ROWS"
    echo "$1: $cases cases, $failures failures"
    failed=$((${failed:-0} + failures))
    cases=0
    failures=0
    begun=$SECONDS
}
emulator() {
    wine "$bin/vxemu.exe" "$@" >"$log/emulator.txt" 2>&1 </dev/null || fail "vxemu $*"
}
manager() {
    wine "$bin/vxmgr.exe" "$@" -a "serial:$serial" --yes --confirm "$serial" --json \
        >"$log/manager.txt" 2>&1 </dev/null
}
acted() {
    wine "$bin/vxemu.exe" fault list --json >"$log/faults.txt" 2>&1 </dev/null || fail "fault list"
    tr -d ' \r\n' <"$log/faults.txt" | grep -q '"acted":1'
}
# holds old|new: the regions of the update
holds() {
    local region
    for region in 7 1; do
        emulator flash dump scsi:3 $region "$log/now"
        cmp -s "$log/now" "$log/$1-$region" || fail "region $region does not hold the $1 contents"
    done
}
bring_back() {
    manager fw restore latest || fail "cannot be brought back"
    holds old
}

emulator start --profile lab --fresh
for region in 7 1; do
    emulator flash dump scsi:3 $region "$log/old-$region"
done
emulator flash image scsi:3 7 "$log/boot" --as 3.99
emulator flash image scsi:3 1 "$log/code" --as 9.20.00
update=(fw update "$log/boot" "$log/code")
manager "${update[@]}" || fail "cannot be updated"
for region in 7 1; do
    emulator flash dump scsi:3 $region "$log/new-$region"
done
bring_back
long=${VXMGMT_RELIABILITY:+1}

# The boot code has 256 KiB, the firmware 512, the journal some: each file meets its limit.
for limit in ${long:+1 2 3 64 255} 4 ${long:+257 300 400} 511; do
    cases=$((cases + 1))
    (
        trap '' XFSZ
        ulimit -f "$limit"
        exec wine "$bin/vxmgr.exe" "${update[@]}" -a "serial:$serial" --yes --confirm "$serial"
    ) </dev/null 2>&1 | cat >"$log/full.txt" && fail "limit of $limit KiB: done all the same"
    holds old
    manager fw update --resume || fail "limit of $limit KiB: something is left to be finished"
    grep -q '"severity": "warning"' "$log/manager.txt" &&
        fail "limit of $limit KiB: what was not begun is told of for ever"
    holds old
    manager "${update[@]}" || fail "limit of $limit KiB: cannot be updated behind it"
    bring_back
done
row "disk full before the first byte"

# From a write on, nothing more can be noted.
for write in ${long:+0 1 2} 3 ${long:+4 5 6 7 8 9} 10 ${long:+11}; do
    cases=$((cases + 1))
    emulator fault clear
    emulator fault add scsi:3 --code FlashWrite --after "$write" --times 1 --do hang 4000
    (
        trap '' XFSZ
        exec wine "$bin/vxmgr.exe" "${update[@]}" -a "serial:$serial" --yes --confirm "$serial"
    ) </dev/null >"$log/full.txt" 2>&1 &
    updater=$!
    for _ in $(seq 100); do
        acted && break
        sleep 0.05
    done
    prlimit --pid "$updater" --fsize=1 || fail "write $write: the disk cannot be filled"
    wait "$updater" && fail "write $write: done without a journal"
    emulator fault clear
    if [ $((write % 2)) -eq 0 ]; then
        manager fw update --resume || fail "write $write: cannot be finished"
        holds new
    fi
    bring_back
done
row "disk full in the middle"
[ "$failed" -eq 0 ]
