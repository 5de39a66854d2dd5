#!/usr/bin/env bash
# Builds the samples against an installation of the library, as a user would, and runs them on the
# emulated adapters. Usage: samples.sh SOURCE BUILD TOOLCHAIN_FILE
set -euo pipefail
source=$1
build=$2
toolchain=$3
bin=$build/bin
work=$(mktemp -d "$build/samples.XXXXXX")
trap 'wine "$bin/vxemu.exe" stop >"$work/stop.txt" 2>&1 </dev/null || true; rm -rf "$work"' EXIT

fail() {
    echo "FAILED: $1"
    tail -n 40 "$work"/*.txt
    exit 1
}
emulator() {
    wine "$bin/vxemu.exe" "$@" >"$work/emulator.txt" 2>&1 </dev/null || fail "vxemu $*"
}
build_sample() {
    cmake -S "$source/samples/$1" -B "$work/$1" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
        -Dvxmgmt_DIR="$work/installed/lib/cmake/vxmgmt" >"$work/$1.txt" 2>&1 || fail "configure $1"
    cmake --build "$work/$1" >"$work/$1.txt" 2>&1 || fail "build $1"
    cp "$work/installed/bin/VXMGMT.DLL" "$work/$1/"
}
run_sample() {
    wine "$work/$1/$1.exe" "${@:2}" >"$work/$1.txt" 2>&1 </dev/null || fail "$1"
}
expect() {
    [ "$(tr -d '\r' <"$work/$1.txt" | grep -c -E "$2")" -eq "$3" ] || fail "$1: not $3 times $2"
}

cmake --install "$build" --prefix "$work/installed" >"$work/install.txt" 2>&1 || fail "install"
for sample in list_adapters standard_api watch_events; do
    build_sample "$sample"
done

emulator start --profile lab --fresh
run_sample list_adapters
expect list_adapters '^4 adapters$' 1
expect list_adapters 'serial +EMU7740A0001$' 2
expect list_adapters 'port name +210002454d000200$' 1
expect list_adapters 'state +online$' 4
expect list_adapters 'sees +2b0002454d000100$' 4

run_sample standard_api
expect standard_api '^4 adapters$' 1
expect standard_api 'port name +210102454d000100$' 1
expect standard_api 'firmware +8\.01\.02$' 1
# Eight disks behind each port.
expect standard_api 'device +.*PhysicalDrive[0-9]+ \(bus 0, target [0-2], lun [0-3]\)$' 32

wine "$work/watch_events/watch_events.exe" 0 20 >"$work/watch_events.txt" 2>&1 </dev/null &
watcher=$!
for _ in $(seq 60); do
    emulator status --json
    tr -d ' \r\n' <"$work/emulator.txt" | grep -q '"port":"scsi:3"[^}]*"event_delivery":true' && break
    sleep 0.25
done
emulator link 3 down
emulator link 3 up
wait "$watcher" || fail "watch_events"
expect watch_events '^link (down|up) \(' 2
emulator stop
run_sample list_adapters
expect list_adapters '^0 adapters$' 1
echo "built and ran the samples"
