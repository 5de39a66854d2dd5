#!/usr/bin/env bash
# A report of emulated adapters in a real browser: texts and charts are there, names from the fabric
# do nothing, the console has no complaint. Screenshots stay in build/report.
source "$(dirname "$0")/common.sh"

scripts/setup.sh --browser
scripts/build.sh vxmgr vxemu
folder=build/report
mkdir -p "$folder"
wine_start
trap 'run vxemu.exe stop >/dev/null 2>&1 </dev/null || true; wine_stop' EXIT

run vxemu.exe start --profile lab --fresh >/dev/null </dev/null
run vxemu.exe target set 2b:00:02:45:4d:00:01:00 \
    "symbolic_name=<script>hostile=1</script>" >/dev/null </dev/null
# What there is to see: too little light, errors, events.
run vxemu.exe port set scsi:4 received_power=30 >/dev/null </dev/null
(
    sleep 3
    run vxemu.exe stats bump 3 invalid_crcs 4
    run vxemu.exe link 4 down
    run vxemu.exe link 4 up
) >/dev/null 2>&1 </dev/null &
run vxmgr.exe report --force "$folder/report.html" --interval 1 --count 8 </dev/null
wait $!
timeout 300 python3 tests/system/report_browser.py "$(command -v chromium)" "$folder/report.html" "$folder"
