#!/usr/bin/env bash
# Runs a test on the machine that CTest gives it, or on the first one: further Wine prefixes have
# drivers, a registry, shared memory and mutexes of their own, so what runs there runs beside the
# others. One test at a time on each.
# Usage: on_machine.sh COMMAND...
set -euo pipefail
prefix=${WINEPREFIX:-$HOME/.wine}
machine=${CTEST_RESOURCE_GROUP_0_MACHINES:-id:1}
machine=${machine#id:}
machine=${machine%%,*}
[ "$machine" = 1 ] || export WINEPREFIX=$prefix-$machine
exec 9>"$prefix-$machine.lock"
flock 9
exec "$@" 9>&-
