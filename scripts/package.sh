#!/usr/bin/env bash
# Makes what is given away of the last commit, in dist/: archives, installer, symbols, bill of materials.
# Usage: scripts/package.sh [--twice] [--sign CERTIFICATE.p12 PASSWORD_FILE]
#   --twice   builds all of it in two folders and fails unless every byte is the same
#   --sign    signs programs, library and installer; without it the driver alone is signed, with a
#             certificate made for testing
caller=$PWD
source "$(dirname "$0")/common.sh"

twice=
certificate=
while [ $# -gt 0 ]; do
    case $1 in
    --twice) twice=1 ;;
    --sign) certificate=$(cd "$caller" && realpath "$2") &&
        password_file=$(cd "$caller" && realpath "$3") && shift 2 ;;
    *) sed -n '2,6s/^# //p' "$0" >&2 && exit 2 ;;
    esac
    shift
done

scripts/setup.sh --package
version=$(sed -nE 's/^project\(vxmgmt VERSION ([0-9.]+).*/\1/p' CMakeLists.txt)
commit=$(git rev-parse HEAD)
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH TZ=UTC LC_ALL=C
work=$root/build/package
mkdir -p "$work"

# A certificate for test machines, made once.
if [ -z "$certificate" ] && [ ! -e "$work/test.p12" ]; then
    openssl req -x509 -newkey rsa:3072 -nodes -days 3650 -subj "/CN=VXMGMT test signing" \
        -addext extendedKeyUsage=codeSigning -addext keyUsage=digitalSignature \
        -keyout "$work/test.key" -out "$work/test.pem" 2>/dev/null
    head -c 24 /dev/urandom | base64 >"$work/test.password"
    openssl pkcs12 -export -inkey "$work/test.key" -in "$work/test.pem" -out "$work/test.p12" \
        -passout "file:$work/test.password"
    openssl x509 -in "$work/test.pem" -outform der -out "$work/test.cer"
    rm "$work/test.key"
fi

# sign FILE NAME: with the given certificate, or that for testing.
sign() {
    osslsigncode sign -pkcs12 "${certificate:-$work/test.p12}" \
        -readpass "${password_file:-$work/test.password}" -h sha256 -n "$2" \
        -st "$SOURCE_DATE_EPOCH" -in "$1" -out "$1.signed" >/dev/null
    mv "$1.signed" "$1"
}

# strip_into SYMBOLS FILE: what debuggers need goes apart.
strip_into() {
    local name
    name=$(basename "$2").debug
    llvm-objcopy --only-keep-debug "$2" "$1/$name"
    (cd "$1" && llvm-objcopy --strip-all --add-gnu-debuglink="$name" "$2")
}

# page MARKDOWN HTML: a manual for a browser.
page() {
    {
        echo '<!doctype html><html lang="en"><meta charset="utf-8">'
        echo "<title>VXMGMT: $(sed -n '1s/^# *//p' "$1")</title>"
        echo '<meta name="viewport" content="width=device-width"><style>'
        cat packaging/page.css
        echo '</style><main>'
        cmark-gfm --extension table --extension autolink --to html "$1" |
            sed -E 's/(href="[^":]*)\.md(["#])/\1.html\2/g'
        echo '</main></html>'
    } >"$2"
}

# build_in FOLDER: everything, in FOLDER/dist.
build_in() {
    local folder=$1
    local main=$folder/vxmgmt-$version emulator=$folder/vxmgmt-$version-emulator
    local symbols=$folder/vxmgmt-$version-symbols dist=$folder/dist file
    rm -rf "$folder"
    mkdir -p "$folder/source" "$symbols" "$emulator" "$dist"
    git archive "$commit" | tar -x -C "$folder/source"
    cmake -S "$folder/source" -B "$folder/build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DCMAKE_TOOLCHAIN_FILE="$folder/source/cmake/mingw-w64-x86_64.cmake" \
        -DVXMGMT_TESTS=OFF -DVXMGMT_BENCH=OFF -DVXMGMT_ANYWHERE=ON >"$folder/log" 2>&1 &&
        cmake --build "$folder/build" -- --quiet >>"$folder/log" 2>&1 &&
        cmake --install "$folder/build" --prefix "$main" >>"$folder/log" 2>&1 || {
        tail -n 40 "$folder/log"
        exit 1
    }
    cp "$folder/build/bin/vxemu.exe" "$folder/build/bin/vxemu.sys" "$emulator"
    for file in "$main"/bin/* "$emulator"/*; do
        strip_into "$symbols" "$file"
        [ -z "$certificate" ] || sign "$file" VXMGMT
    done
    if [ -z "$certificate" ]; then
        sign "$emulator/vxemu.sys" "Emulated adapters, for test machines"
        cp "$work/test.cer" "$emulator/vxemu-test.cer"
    fi
    python3 packaging/check_pe.py "$main"/bin/* "$emulator"/*.exe "$emulator"/*.sys

    sed -i 's|](schemas|](../schemas|g' "$folder/source/docs/"*.md # they stand beside docs
    cp -r "$folder/source/docs" "$folder/source/samples" "$folder/source/bindings" "$main"
    mv "$main/docs/schemas" "$main/schemas"
    [ ! -d "$folder/source/packaging/monitoring" ] || cp -r "$folder/source/packaging/monitoring" "$main"
    cp "$folder/source/README.md" "$folder/source/CHANGELOG.md" "$folder/source/LICENSE" "$main"
    cp "$folder/source/docs/emulator.md" "$folder/source/docs/test-machine.md" "$emulator"
    (
        cd "$folder/source"
        for file in README.md CHANGELOG.md docs/*.md bindings/README.md bindings/*/README.md; do
            page "$file" "$main/${file%.md}.html"
        done
    )
    (cd "$folder/source" && scripts/reference.sh "$main/docs/api")
    # One each: that of the driver's signature differs where another certificate is made.
    for file in "$main" "$emulator"; do
        python3 packaging/make_sbom.py "$version" "$commit" "$file" >"$dist/$(basename "$file").spdx.json"
        cp "$dist/$(basename "$file").spdx.json" "$file/licences"
    done
    find "$main" "$emulator" "$symbols" -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +

    python3 packaging/make_zip.py "$dist/vxmgmt-$version-x64.zip" "$main"
    python3 packaging/make_zip.py "$dist/vxmgmt-$version-emulator.zip" "$emulator"
    python3 packaging/make_zip.py "$dist/vxmgmt-$version-symbols.zip" "$symbols"
    packaging/make_installer.sh "$main" "$version" "$dist/vxmgmt-$version-x64.msi"
    [ -z "$certificate" ] || sign "$dist/vxmgmt-$version-x64.msi" "VXMGMT $version"
    (cd "$dist" && sha256sum -- * >SHA256SUMS)
}

build_in "$work/first"
if [ -n "$twice" ]; then
    build_in "$work/in another folder"
    diff "$work/first/dist/SHA256SUMS" "$work/in another folder/dist/SHA256SUMS" || {
        echo "The same commit gave other bytes"
        exit 1
    }
    echo "Built twice: every byte is the same."
fi
rm -rf dist
cp -r "$work/first/dist" dist
[ -n "$certificate" ] || echo "Not signed, but for vxemu.sys: with a certificate made here for testing."
(cd dist && ls -l)
