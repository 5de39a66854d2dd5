#!/usr/bin/env bash
# Installs the Debian packages that building and testing need: only those that are missing.
source "$(dirname "$0")/common.sh"

packages=(
    cmake ninja-build g++ lld llvm
    g++-mingw-w64-x86-64-posix wine wine64     # the Windows build and where it runs
    libcli11-dev nlohmann-json3-dev            # command lines, JSON
    libz-mingw-w64-dev zlib1g-dev unzip python3  # bundles for support, and their test
    googletest libvalijson-dev                 # tests, and their check of documents
    procps                                     # pkill, for a system test
    tmux                                       # a terminal, for a system test
    pkgconf                                    # the guide's programs find the library by it
    clang-format cppcheck                      # scripts/check.sh
)
case ${1:-} in
--fuzz) packages+=(clang libclang-rt-dev) ;;
--bindings) packages+=(clang python3) ;;
--node) packages+=(nodejs npm) ;; # the rest of scripts/bindings_test.sh
--package)
    packages+=(
        git zip                            # what is staged, and archives
        wixl msitools faketime             # the installer
        osslsigncode openssl               # signatures
        cmark-gfm doxygen                  # manuals and the headers as pages
    )
    ;;
# scripts/monitoring_test.sh
--monitoring) packages+=(prometheus prometheus-node-exporter python3-prometheus-client curl) ;;
--browser) packages+=(chromium) ;; # scripts/report_test.sh
esac

missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
        missing+=("$package")
done
if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing ${missing[*]}"
    as_root apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
