#!/usr/bin/env bash
# Shows the manager at work: emulated adapters as a kernel-mode driver, and vxmgr over the library.
source "$(dirname "$0")/common.sh"

scripts/build.sh vxmgr vxemu
wine_start
trap 'run vxemu.exe stop >/dev/null 2>&1 || true; wine_stop' EXIT

# show PROGRAM ARGS: the command as a user types it, then what it prints.
show() {
    echo
    echo "> $*"
    run "$1.exe" "${@:2}" >build/demo.txt 2>&1 </dev/null || true
    tr -d '\r' <build/demo.txt
}

show vxemu start --profile lab --fresh
show vxmgr version
show vxmgr adapter list
show vxmgr adapter show -a index:0
show vxmgr port list
show vxmgr port show -p scsi:3
show vxmgr driver show -p scsi:9

echo
echo "A link that goes down and comes up, seen by two watching processes:"
for watcher in 1 2; do
    run vxmgr.exe event watch -p scsi:3 --count 2 -q >"build/watch$watcher.txt" 2>/dev/null &
    eval "watcher$watcher=\$!"
done
# The watchers have registered when the driver delivers events.
for _ in $(seq 40); do
    run vxemu.exe status --json | tr -d ' \r\n' | grep -q '"port":"scsi:3"[^}]*"event_delivery":true' && break
    sleep 0.25
done
sleep 1
run vxemu.exe link 3 down >/dev/null
run vxemu.exe link 3 up >/dev/null
# shellcheck disable=SC2154
wait "$watcher1" "$watcher2"
for watcher in 1 2; do
    echo
    echo "> vxmgr event watch -p scsi:3 --count 2      (process $watcher)"
    tr -d '\r' <"build/watch$watcher.txt"
done

echo
echo "A target bound and two of its LUNs hidden, live and in the store, over a restart of the driver:"
show vxmgr bind add -p scsi:3 -t 0:1 --id 9
show vxmgr lunmask deny 1,2 -p scsi:3 -t 0:0 -y
show vxemu stop
show vxemu start --profile lab
show vxmgr target list -p scsi:3
show vxmgr scsi luns -p scsi:3 -t 0:0
show vxmgr map target all -p scsi:3
show vxmgr lunmask allow 1,2 -p scsi:3 -t 0:0
show vxmgr bind remove -p scsi:3 -t 0:9

show vxmgr fw show
show vxmgr sfp show -p scsi:3
show vxmgr port stats -p scsi:3
show vxmgr hbaapi list

show vxmgr explain 0x20000067
show vxmgr port list -o json -q | sed -n 1,40p
echo "    ..."
show vxemu stop
