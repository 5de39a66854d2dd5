#!/usr/bin/env bash
# Formatting, static analysis, the description of the headers for bindings, and what the programs print
# for the documentation: schemas and command references. Changes nothing; "scripts/check.sh --fix"
# formats and writes what differs.
source "$(dirname "$0")/common.sh"

fix=
[ "${1:-}" != --fix ] || fix=1

scripts/setup.sh
mapfile -t sources < <(git ls-files '*.cpp' '*.h' '*.c')
if [ -n "$fix" ]; then
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

version=$(sed -nE 's/^project\(vxmgmt VERSION ([0-9.]+).*/\1/p' CMakeLists.txt)
grep -qx "## $version" CHANGELOG.md || {
    echo "CHANGELOG.md has no section about version $version"
    exit 1
}

git ls-files -z '*.md' | xargs -0 python3 packaging/check_links.py
PYTHONDONTWRITEBYTECODE=1 python3 packaging/reference/parameters.py include/*.h
command -v clang >/dev/null || scripts/setup.sh --bindings
[ -z "$fix" ] || python3 bindings/describe.py
scripts/bindings_test.sh --without-node

scripts/build.sh vxmgr vxemu
trap wine_stop EXIT
wine_start
printed=build/printed
rm -rf "$printed"
mkdir -p "$printed"
stale=

# compare PRINTED COMMITTED: equal, byte for byte, or written.
compare() {
    cmp -s "$1" "$2" && return
    if [ -n "$fix" ]; then
        mkdir -p "$(dirname "$2")"
        cp "$1" "$2"
    else
        echo "$2 is not what the program prints"
        stale=1
    fi
}

# Puts the program's command reference between the marker lines of its manual.
with_reference() {
    awk -v reference="$2" '
        /^<!-- end of the command reference -->$/ { inside = 0 }
        !inside { print }
        /^<!-- command reference, printed by / {
            inside = 1
            while ((getline line < reference) > 0) print line
        }' "$1"
}

for tool in vxmgr vxemu; do
    run $tool.exe schema --folder "$printed/schemas" --json >"$printed/$tool.json" </dev/null
    run $tool.exe help --markdown >"$printed/$tool.reference" </dev/null
    manual=docs/$([ $tool = vxmgr ] && echo vxmgr || echo emulator).md
    with_reference "$manual" "$printed/$tool.reference" >"$printed/$(basename "$manual")"
    compare "$printed/$(basename "$manual")" "$manual"
done
while IFS= read -r file; do
    compare "$file" "docs/schemas/${file#"$printed"/schemas/}"
done < <(find "$printed/schemas" -type f)
# While a program notes results that no table describes, their schemas are kept by hand.
for tool in vxmgr vxemu; do
    grep -q '"messages": \[\]' "$printed/$tool.json" || continue
    while IFS= read -r file; do
        [ -e "$printed/schemas/${file#docs/schemas/}" ] && continue
        if [ -n "$fix" ]; then
            rm "$file"
        else
            echo "$file is a schema that the program does not print"
            stale=1
        fi
    done < <(find "docs/schemas/$tool" -type f)
done
if [ -n "$stale" ]; then
    echo "Schemas or manuals differ: run scripts/check.sh --fix"
    exit 1
fi
echo "Formatting, analysis, bindings, schemas and command references passed."
