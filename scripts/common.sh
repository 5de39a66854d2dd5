# Shared by the scripts: where things are, and how Windows programs run. Sourced, not run.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
root=$PWD
bin=$root/build/mingw/bin

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# A private Wine prefix inside the build folder, without a display. Its name may have a suffix:
# another machine. One with a number (tests/on_machine.sh) begins as a copy of the first.
wine_start() {
    export WINEPREFIX=$root/build/wine${1:-}
    export WINEDEBUG=-all
    export WINEDLLOVERRIDES="mscoree,mshtml="
    export WINEARCH=win64
    unset DISPLAY
    mkdir -p "$WINEPREFIX"
    wineserver=$(command -v wineserver || ls /usr/lib/wine/wineserver64 /usr/lib/wine/wineserver 2>/dev/null | head -n 1)
    if [ -e "$WINEPREFIX/system.reg" ]; then
        :
    elif [[ ${1:-} = -[0-9] ]] && [ -e "$root/build/wine/system.reg" ]; then
        cp -a "$root/build/wine/." "$WINEPREFIX"
    else
        echo "Making a Wine prefix (once, about ten seconds)"
        wine wineboot --init >/dev/null 2>&1
        "$wineserver" -w
    fi
    # Persistent, so that not every program pays for a start of its own. The services that the
    # first program starts must not inherit a pipe that somebody waits for.
    "$wineserver" -p || true  # it may be running
    wine cmd /c exit >/dev/null 2>&1 </dev/null
    started+=("$WINEPREFIX")
}
started=()

wine_stop() {
    for WINEPREFIX in "${started[@]}"; do
        "$wineserver" -k >/dev/null 2>&1 || true
        "$wineserver" -w >/dev/null 2>&1 || true
    done
}

# run PROGRAM ARGS: a program of the build, without the notes that Wine's launcher prints.
run() {
    wine "$bin/$1" "${@:2}"
}
