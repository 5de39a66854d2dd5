#!/usr/bin/env bash
# The live screen of the ports on a real terminal: it shows what happens, takes keys, fits the
# terminal, goes on without its driver, and leaves the terminal as it was. A terminal multiplexer
# plays the terminal. Usage: top_screen.sh BIN
set -euo pipefail
bin=$1
log=$(mktemp -d)
terminal() { tmux -S "$log/socket" -f /dev/null "$@"; }
clean_up() {
    terminal kill-server 2>/dev/null || true
    # A request of a program that ended may hang in the driver for a while yet.
    for _ in 1 2 3 4; do
        wine "$bin/vxemu.exe" stop >"$log/stop" 2>&1 </dev/null && break
    done
    rm -rf "$log"
}
trap clean_up EXIT

fail() {
    echo "FAILED: $1; the screen:"
    terminal capture-pane -p || true
    cat "$log/emulator"
    exit 1
}
emulator() {
    wine "$bin/vxemu.exe" "$@" >"$log/emulator" 2>&1 </dev/null || fail "vxemu $*"
}
# shows TEXT: within half a minute. A text without blanks in a row, as columns may be wider.
shows() {
    for _ in $(seq 150); do
        terminal capture-pane -p | tr -s ' ' | grep -q -- "$1" && return
        sleep 0.2
    done
    fail "no \"$1\""
}
# begin COLUMNS ROWS ARGUMENTS: the program on a terminal of this size; its exit code goes to a file.
# Wine's own console gives the terminal back a moment behind the program's end.
begin() {
    rm -f "$log/exit" "$log/before" "$log/after"
    terminal new-session -d -x "$1" -y "$2" \
        "stty -a >$log/before; wine $bin/vxmgr.exe top --interval 1 ${*:3}; echo \$? >$log/exit
         for _ in \$(seq 50); do
             stty -a >$log/now; cmp -s $log/before $log/now && break; sleep 0.2
         done
         mv $log/now $log/after; cat"
    shows "^PORT"
}
# ends CODE: the program, and the terminal is what it was, with a cursor and without the screen
ends() {
    for _ in $(seq 150); do
        [ -e "$log/after" ] && break
        sleep 0.2
    done
    [ "$(cat "$log/exit" 2>/dev/null)" = "$1" ] || fail "exit code $(cat "$log/exit") instead of $1"
    cmp "$log/before" "$log/after" || fail "the terminal has other settings than before"
    terminal capture-pane -p | grep -q "PORT\|EVENTS" && fail "the screen is still there"
    [ "$(terminal display -p '#{cursor_flag}')" = 1 ] || fail "the cursor is hidden"
    terminal kill-server
    sleep 0.2
}

emulator start --fresh --profile lab
begin 120 24
shows "^ *0 3 .* online 32G .* 0\.00"
emulator stats bump scsi:4 invalid_crcs 5
shows "^ *1 4 .* online 32G .* 5 "
terminal send-keys e
shows "ERRORSv"
terminal send-keys / 7404
shows "1 of 4 ports"
terminal send-keys Escape
shows "[0-9] UTC 4 ports"
terminal send-keys p
shows "paused"
terminal send-keys p
emulator link 3 down
shows "port 0: the link went down"
emulator stop
shows "^ *2 6 .* gone"
emulator start --profile lab
shows "^ *2 6 .* online 8G"
shows "port 2: answers again"
terminal send-keys q
ends 0

# Forty columns, and a port that hangs: the others go on, and Ctrl-C is heard.
begin 40 12
emulator fault add scsi:4 --do hang 9000
shows "^ *1 silent"
shows "^ *0 online"
terminal send-keys C-c
ends 10
emulator fault clear
echo "the screen shows ports, takes keys, and leaves the terminal as it was"
