#!/usr/bin/env bash
# A flash write that is interrupted with Ctrl-C finishes its region, gives the update lock back and
# ends with exit code 10; a second Ctrl-C gives it up. An update stops behind the region, to be
# finished later. Under Wine a SIGINT is the Ctrl-C of a program's console.
# Usage: interrupted_write.sh BIN
set -euo pipefail
bin=$1
log=$(mktemp -d)
trap 'wine "$bin/vxemu.exe" stop >"$log/stop" 2>&1 </dev/null || true; rm -rf "$log"' EXIT

fail() {
    echo "FAILED: $1"
    cat "$log"/*.txt
    exit 1
}
emulator() {
    wine "$bin/vxemu.exe" "$@" >"$log/emulator.txt" 2>&1 </dev/null || fail "vxemu $*"
}
lock_is() {
    wine "$bin/vxmgr.exe" flash lock show --json >"$log/lock.txt" 2>&1 </dev/null || fail "lock show"
    tr -d ' \r\n' <"$log/lock.txt" | grep -q "\"serial\":\"EMU7740A0001\",\"held\":$1"
}
hangs() {
    wine "$bin/vxemu.exe" fault list --json >"$log/faults.txt" 2>&1 </dev/null || fail "fault list"
    tr -d ' \r\n' <"$log/faults.txt" | grep -q '"acted":1'
}
# manager ARGUMENTS...: on the adapter, with consent; its output is in write.txt
manager() {
    wine "$bin/vxmgr.exe" "$@" -a serial:EMU7740A0001 --yes --confirm EMU7740A0001 --json \
        >"$log/write.txt" 2>&1 </dev/null
}
says() {
    tr -d ' \r\n' <"$log/write.txt" | grep -q "$1" || fail "$2"
}
# interrupt MILLISECONDS TIMES ARGUMENTS...: a write that hangs for some time is interrupted so often
interrupt() {
    local milliseconds=$1 times=$2 code=0
    shift 2
    emulator fault clear
    emulator fault add scsi:3 --code FlashWrite --times 1 --do hang "$milliseconds"
    wine "$bin/vxmgr.exe" "$@" -a serial:EMU7740A0001 --yes --confirm EMU7740A0001 --json \
        >"$log/write.txt" 2>&1 </dev/null &
    local writer=$!
    # Until the first byte is on its way a Ctrl-C cancels the write.
    for _ in $(seq 60); do
        hangs && break
        sleep 0.1
    done
    lock_is true || fail "the lock is not taken"
    for _ in $(seq "$times"); do
        kill -INT "$writer"
        sleep 0.5
    done
    wait "$writer" || code=$?
    [ "$code" -eq 10 ] || fail "exit code $code instead of 10"
    lock_is false || fail "the lock is still held"
}

emulator start --profile lab --fresh
emulator flash image scsi:3 1 "$log/image" --as 9.13.00
interrupt 4000 1 flash write 1 "$log/image"
says '"state":"new","verified":true' "not finished"
emulator flash image scsi:3 1 "$log/image" --as 9.14.00
interrupt 8000 2 flash write 1 "$log/image"
says 'mayholdhalfoftheimage' "the state is not told"
echo "the region is finished after one Ctrl-C, and given up after two"

emulator flash image scsi:3 1 "$log/image" --as 9.20.00
emulator flash image scsi:3 7 "$log/boot" --as 3.99
interrupt 4000 1 fw update "$log/image" "$log/boot"
says 'stoppedbeforeregion1(firmware)' "the state is not told"
manager fw update "$log/image" && fail "updated again behind an interruption"
manager fw update --resume || fail "cannot be finished"
says '"running_after":"9.20.00"' "does not run"
manager fw restore latest || fail "cannot be brought back"
echo "an update stops behind its region, and is finished later"
