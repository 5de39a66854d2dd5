#!/usr/bin/env bash
# A watcher that is interrupted with Ctrl-C ends with exit code 10 and leaves event delivery off.
# Under Wine a SIGINT is the Ctrl-C of a program's console. Usage: interrupted_watch.sh BIN
set -euo pipefail
bin=$1
log=$(mktemp -d)
trap 'wine "$bin/vxemu.exe" stop >"$log/stop" 2>&1 </dev/null || true; rm -rf "$log"' EXIT

fail() {
    echo "FAILED: $1"
    cat "$log"/*
    exit 1
}
emulator() {
    wine "$bin/vxemu.exe" "$@" >"$log/emulator" 2>&1 </dev/null || fail "vxemu $*"
}
delivery_is() {
    emulator status --json
    tr -d ' \r\n' <"$log/emulator" | grep -q "\"port\":\"scsi:3\"[^}]*\"event_delivery\":$1"
}

emulator start --profile lab
wine "$bin/vxmgr.exe" event watch -p scsi:3 -o jsonl --out "$log/events" >"$log/out" 2>&1 </dev/null &
watcher=$!
for _ in $(seq 60); do
    delivery_is true && break
    sleep 0.25
done
delivery_is true || fail "the watcher does not register"
pkill -INT -f "vxmgr.exe event watch -p scsi:3 -o jsonl --out $log/events"
code=0
wait "$watcher" || code=$?
[ "$code" -eq 10 ] || fail "exit code $code instead of 10"
delivery_is false || fail "event delivery is still on"
echo "interrupted with exit code 10, event delivery off"
