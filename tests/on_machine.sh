#!/usr/bin/env bash
# Runs a test on machine 1 or 2: a second Wine prefix has its own drivers, registry, shared memory
# and mutexes, so what runs there runs beside the tests of the first.
# Usage: on_machine.sh NUMBER COMMAND...
set -euo pipefail
[ "$1" -eq 1 ] || export WINEPREFIX=${WINEPREFIX:-$HOME/.wine}-$1
exec "${@:2}"
