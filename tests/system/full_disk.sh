#!/usr/bin/env bash
# A disk that takes no more: before an update writes anything, then while it writes. A limit on the
# size of files stands for the disk. Then a folder for journals that is somebody else's, or takes
# nothing. Usage: full_disk.sh BIN; VXMGMT_RELIABILITY=1 for the long form, which adds its rows to
# the file VXMGMT_RELIABILITY_ROWS.
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

# Folders that an update must not trust, or cannot use: refused before the first byte, in words.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}
# refused EXIT TEXT
refused() {
    cases=$((cases + 1))
    local exit=0
    manager "${update[@]}" || exit=$?
    [ "$exit" -eq "$1" ] || fail "$2: exit $exit instead of $1"
    grep -q "$2" "$log/manager.txt" || fail "$2: is not said"
    holds old
}
updates=${WINEPREFIX:-$HOME/.wine}/drive_c/ProgramData/vxmgr/updates
owner=$(stat -c %u:%g "$updates")
mine=$updates/$serial

as_root chown 1:1 "$mine"
refused 8 "belongs to neither the administrators nor you"
as_root chown -R "$owner" "$mine"

# An update that was cut off: what it left is not believed once it is somebody else's.
emulator flash power-fail scsi:3 --after-bytes 100000
manager "${update[@]}" && fail "done without power"
emulator reset scsi:3
journal=$(find "$mine" -name journal.json | sort | tail -n 1)
for changed in "$journal" "$(dirname "$journal")/region-7.old" "$(dirname "$journal")"; do
    cases=$((cases + 1))
    as_root chown 1:1 "$changed"
    manager fw restore latest && fail "written from $(basename "$changed") of somebody else"
    grep -q "belongs to neither the administrators nor you" "$log/manager.txt" ||
        fail "that $(basename "$changed") is of somebody else is not said"
    as_root chown "$owner" "$changed"
done
bring_back

rm -rf "$mine"
touch "$mine"
refused 3 "cannot be made"
rm "$mine"
# A folder that takes nothing: by its mode, or for root, whom modes do not stop, by its mount.
mkdir "$mine"
if [ "$(id -u)" -eq 0 ]; then mount -t tmpfs -o ro none "$mine"; else chmod a-w "$mine"; fi
refused 5 "cannot be made"
if [ "$(id -u)" -eq 0 ]; then umount "$mine"; else chmod u+w "$mine"; fi
row "folder of somebody else, or read-only"
[ "$failed" -eq 0 ]
