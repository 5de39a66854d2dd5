#!/usr/bin/env bash
# A prompt with the emulated adapters running and vxmgr and vxemu as commands. Leave it with exit.
# Usage: scripts/shell.sh [PROFILE]    lab, or another of `vxemu profile list`
source "$(dirname "$0")/common.sh"

scripts/build.sh vxmgr vxemu
wine_start
clean_up() {
    run vxemu.exe stop >/dev/null 2>&1 </dev/null || true
    wine_stop
    rm -rf "$commands"
}
commands=$(mktemp -d)
trap clean_up EXIT
for program in vxmgr vxemu; do
    printf '#!/bin/sh\nexec wine "%s/%s.exe" "$@"\n' "$bin" "$program" >"$commands/$program"
done
chmod +x "$commands"/*
"$commands/vxemu" start --profile "${1:-lab}" </dev/null
echo "vxmgr --help lists the commands; exit ends the prompt and the adapters."
PATH=$commands:$PATH PS1='vxmgr> ' bash --norc || true
