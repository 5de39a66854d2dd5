#!/usr/bin/env bash
# Formatting and static analysis. Changes nothing; "scripts/check.sh --fix" formats.
source "$(dirname "$0")/common.sh"

scripts/setup.sh
mapfile -t sources < <(git ls-files '*.cpp' '*.h' '*.c')
if [ "${1:-}" = --fix ]; then
    clang-format -i "${sources[@]}"
elif ! clang-format --dry-run -Werror "${sources[@]}"; then
    echo "Formatting differs: run scripts/check.sh --fix"
    exit 1
fi

# Suppressed: what needs system headers that the analysis does not see, and matters of taste.
cppcheck --quiet --error-exitcode=1 --language=c++ --std=c++20 --platform=win64 \
    --enable=warning,performance,portability --inline-suppr -j "$(nproc)" \
    --suppress=missingIncludeSystem --suppress=unknownMacro --suppress=syntaxError \
    --suppress=passedByValue -Isrc -Iinclude -I. -D_WIN32=1 -D_WIN64=1 -D__GNUC__=12 \
    src emulator tools
echo "Formatting and analysis passed."
