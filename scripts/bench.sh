#!/usr/bin/env bash
# Measures the library against bare driver requests and prints the ratios.
source "$(dirname "$0")/common.sh"

scripts/build.sh
wine_start
trap 'run vxemu.exe stop >/dev/null 2>&1 || true; wine_stop' EXIT
run vxemu.exe start --profile lab --fresh >/dev/null
run vxemu.exe adapter set scsi:3 raw_dump_bytes=16777216 >/dev/null
run vxbench.exe "$@"
