#!/usr/bin/env bash
# Every public header compiles alone, without a warning, in every standard of C and C++ that programs
# are written in; with clang, too, where it is installed.
# Usage: headers.sh INCLUDE C_COMPILER CXX_COMPILER
set -euo pipefail
cd "$1"

# compile HEADER STANDARD COMPILER...: a header is read as what its compiler makes of it alone.
compile() {
    echo "#include \"$1\"" | "${@:3}" "-std=$2" -fsyntax-only -I. -Wall -Wextra -Wpedantic \
        -Wconversion -Wsign-conversion -Wundef -Wstrict-aliasing -Werror - ||
        {
            echo "FAILED: $1 as $2 with $3"
            return 255
        }
}
export -f compile

for header in *.h; do
    for standard in c99 c11 c17; do echo "$header" $standard "$2" -xc; done
    for standard in c++11 c++14 c++17 c++20; do echo "$header" $standard "$3" -xc++; done
    if command -v clang >/dev/null; then
        echo "$header" c99 clang --target=x86_64-w64-windows-gnu -xc
        echo "$header" c++20 clang --target=x86_64-w64-windows-gnu -xc++
    fi
done | xargs -P "$(nproc)" -L 1 bash -c 'compile "$@"' compile
echo "compiled every header alone"
