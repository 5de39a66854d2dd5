#!/usr/bin/env bash
# Compiles every program of the guide for developers as it stands there, against an installation, runs
# them on the emulated adapters in their order and compares what they print with the guide. Then the
# program of README, by its line, and one of Visual Studio's conventions with lld. Usage: guide.sh SOURCE BUILD COMPILER
set -euo pipefail
source=$1
build=$2
compiler=$3
bin=$build/bin
work=$(mktemp -d "$build/guide.XXXXXX")
trap 'wine "$bin/vxemu.exe" stop >/dev/null 2>&1 </dev/null || true; rm -rf "$work"' EXIT

fail() {
    echo "FAILED: $1"
    tail -n 40 "$work/log"
    exit 1
}

cmake --install "$build" --prefix "$work/installed" >"$work/log" 2>&1 || fail "install"
cp "$work/installed/bin/VXMGMT.DLL" "$work"
# A block of C names its file in its first line; the block behind it begins with the command.
awk -v folder="$work" '
    /^```c$/ { getline; name = $2; sub(/\.c:$/, "", name); file = folder "/" name ".c"
               print name }
    /^```$/ && file == "" && name != "" { getline
        if ($0 != "> " name) { print "no output of " name > "/dev/stderr"; exit 1 }
        file = folder "/" name ".expected"; printf "" > file; next }
    /^```$/ { if (file ~ /expected$/) name = ""; file = ""; next }
    file != "" { print > file }' "$source/docs/library.md" >"$work/names" || fail "docs/library.md"
[ "$(wc -l <"$work/names")" -eq 10 ] || fail "not ten programs"

wine "$bin/vxemu.exe" start --profile lab --fresh >"$work/log" 2>&1 </dev/null || fail "vxemu start"
PKG_CONFIG_LIBDIR=$work/installed/lib/pkgconfig pkg-config --cflags --libs vxmgmt >"$work/flags"
read -ra flags <"$work/flags"
while read -r name <&3; do
    "$compiler" -std=c99 -Wall -Wextra -Wpedantic -Wconversion -Werror "$work/$name.c" \
        -o "$work/$name.exe" "${flags[@]}" >"$work/log" 2>&1 || fail "compile $name"
    wine "$work/$name.exe" >"$work/printed" 2>"$work/log" </dev/null || fail "run $name"
    tr -d '\r' <"$work/printed" | diff "$work/$name.expected" - >"$work/log" ||
        fail "$name prints something else"
done 3<"$work/names"

awk '/^```c$/ { inside = 1; next } /^```/ { inside = 0 } inside' "$source/README.md" >"$work/app.c"
line=$(sed -nE 's/^    x86_64-w64-mingw32-gcc (.*app\.exe)$/\1/p' "$source/README.md")
read -ra line <<<"$line"
(cd "$work/installed" && cp "$work/app.c" . && "$compiler" "${line[@]}") >"$work/log" 2>&1 ||
    fail "compile the program of README"
cp "$work/installed/app.exe" "$work"
wine "$work/app.exe" >"$work/printed" 2>"$work/log" </dev/null || fail "run the program of README"
[ "$(grep -c firmware "$work/printed")" -eq 4 ] || fail "the program of README"

# Without Visual Studio's headers, of which stdio.h is the only one needed. Objects of GCC have the
# same format; clang, where it is installed, also reads the headers as Visual Studio does.
mkdir "$work/msvc"
echo 'typedef struct FILE FILE;' >"$work/msvc/stdio.h"
foreign=("$compiler" -fno-stack-protector)
! command -v clang >/dev/null || foreign=(clang --target=x86_64-pc-windows-msvc)
"${foreign[@]}" -ffreestanding -Wall -Wextra -Werror -O1 -isystem "$work/msvc" \
    -I "$work/installed/include" -c "$source/tests/system/msvc_program.c" -o "$work/msvc.obj" \
    >"$work/log" 2>&1 || fail "compile msvc_program.c"
lld-link /nologo /entry:start /subsystem:console /nodefaultlib "/out:$work/msvc.exe" \
    "$work/msvc.obj" "$work/installed/lib/vxmgmt.lib" >"$work/log" 2>&1 || fail "lld-link"
adapters=0
wine "$work/msvc.exe" >"$work/log" 2>&1 </dev/null || adapters=$?
[ "$adapters" -eq 4 ] || fail "the program of Visual Studio's conventions found $adapters ports"
echo "built and ran the guide"
