#!/usr/bin/env bash
# What scripts/package.sh made, as those meet it who get it: archives, signatures and the installer: in,
# from an older version, not to an older one, and out again with nothing left.
# Usage: scripts/package_test.sh [CERTIFICATE.pem]     behind scripts/package.sh
#   CERTIFICATE.pem   what --sign signed everything with; without it vxemu.sys alone is looked at
[ $# -eq 0 ] || set -- "$(realpath "$1")"
source "$(dirname "$0")/common.sh"

scripts/setup.sh --package
work=$root/build/package/test
folder=$(cd "$root/build/package/first" && pwd)
version=$(sed -nE 's/^project\(vxmgmt VERSION ([0-9.]+).*/\1/p' CMakeLists.txt)
installer=$root/dist/vxmgmt-$version-x64.msi
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH
rm -rf "$work" "$root/build/wine-package"
mkdir -p "$work"

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

(cd dist && sha256sum --quiet -c SHA256SUMS) || fail "a sum is wrong"
for archive in dist/*.zip; do
    unzip -tq "$archive" >/dev/null || fail "$archive"
done
find "$folder/vxmgmt-$version" \( -name '*.md' -o -name '*.html' \) ! -path '*/docs/api/*' -print0 |
    xargs -0 python3 packaging/check_links.py || fail "links"
for bill in dist/*.spdx.json; do
    python3 -m json.tool "$bill" >/dev/null || fail "$bill"
done
unzip -q "dist/vxmgmt-$version-emulator.zip" -d "$work"
emulator=$work/vxmgmt-$version-emulator
certificate=${1:-$work/test.pem}
signed=("$emulator/vxemu.sys")
if [ $# -eq 0 ]; then
    openssl x509 -inform der -in "$emulator/vxemu-test.cer" -out "$certificate"
else
    [ ! -e "$emulator/vxemu-test.cer" ] || fail "the certificate for testing is packed, too"
    signed=("$folder/vxmgmt-$version"/bin/* "$emulator"/*.exe "$emulator"/*.sys "$installer")
fi
for file in "${signed[@]}"; do
    osslsigncode verify -CAfile "$certificate" -in "$file" >"$work/log" 2>&1 ||
        fail "the signature of $file: $(tail -n 5 "$work/log")"
done

# From an older version, and one that is newer than this.
packaging/make_installer.sh "$folder/vxmgmt-$version" 1.27.0.9 "$work/older.msi" 2>/dev/null
packaging/make_installer.sh "$folder/vxmgmt-$version" 1.29.0.1 "$work/newer.msi" 2>/dev/null

wine_start -package
trap wine_stop EXIT
disk=$WINEPREFIX/drive_c
place="$disk/Program Files/VXMGMT"

# state FILE: every file and what the registry says of our things and of the path.
state() {
    find "$disk" -type f ! -path '*/windows/Installer/*' ! -path '*/Temp/*' | sort >"$1"
    for key in 'HKLM\Software\SNIA' 'HKLM\Software\VXMGMT' \
        'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall' \
        'HKLM\System\CurrentControlSet\Control\Session Manager\Environment'; do
        # Wine leaves the separator of what it takes from the path.
        wine reg query "$key" /s 2>/dev/null </dev/null | tr -d '\r' | sed 's/;*$//' >>"$1" || true
    done
}
# installer EXIT ARGUMENTS...: msiexec, without questions.
installer() {
    local wanted=$1 got=0
    shift
    wine msiexec "$@" /qn >"$work/log" 2>&1 </dev/null || got=$?
    [ "$got" -eq "$wanted" ] || fail "msiexec $*: exit $got instead of $wanted: $(tail -n 5 "$work/log")"
}
products() {
    wine reg query 'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall' /s 2>/dev/null </dev/null |
        tr -d '\r' | grep -A20 -i vxmgmt | grep -c DisplayVersion || true
}
shown_version() {
    wine reg query 'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall' /s 2>/dev/null </dev/null |
        tr -d '\r' | sed -nE 's/.*DisplayVersion +REG_SZ +(1\.2[0-9.]+)$/\1/p'
}

state "$work/before"
installer 0 /i "$work/older.msi"
wine "C:\\Program Files\\VXMGMT\\bin\\vxmgr.exe" version >"$work/log" 2>&1 </dev/null ||
    fail "vxmgr does not run from its place"
wine cmd /c vxmgr version >"$work/log" 2>&1 </dev/null || fail "vxmgr does not run by the path"
grep -q "$version" "$work/log" || fail "vxmgr says something else: $(cat "$work/log")"
wine reg query 'HKLM\Software\SNIA\HBA\VXCORE' /v LibraryFile 2>/dev/null </dev/null |
    grep -qi 'VXMGMT\.DLL' || fail "the standard HBA API does not know the library"

installer 0 /i "$installer"
[ "$(products)" -eq 1 ] || fail "two versions stand beside each other"
[ "$(shown_version)" = "$(python3 -c "
import sys; sys.path.insert(0, 'packaging')
from make_wxs import installer_version
print(installer_version('$version'))")" ] || fail "the upgrade left version $(shown_version)"
(cd "$folder/vxmgmt-$version" && find . -type f | sort) >"$work/packed"
(cd "$place" && find . -type f | sort) | diff "$work/packed" - >"$work/log" ||
    fail "not what is packed: $(head -n 5 "$work/log")"
# The task of the monitoring starts what is installed.
task=$(sed -nE 's|.*<Command>"C:(.*)"</Command>.*|\1|p' "$place/monitoring/vxmgr-metrics.xml")
[ -e "$disk${task//\\//}" ] || fail "there is no C:$task for the scheduled task"

got=0
wine msiexec /i "$work/older.msi" /qn >"$work/log" 2>&1 </dev/null || got=$?
[ "$got" -ne 0 ] || fail "an older version was put over a newer one"
[ -e "$place/bin/vxmgr.exe" ] && [ "$(products)" -eq 1 ] || fail "the refused downgrade broke something"

installer 0 /x "$installer"
state "$work/after"
diff "$work/before" "$work/after" >"$work/log" || fail "something is left: $(head -n 20 "$work/log")"

# Without the features that touch other things.
installer 0 /i "$installer" ADDLOCAL=Main
wine cmd /c vxmgr version >"$work/log" 2>&1 </dev/null || true
! grep -q "$version" "$work/log" || fail "on the path without being asked"
! wine reg query 'HKLM\Software\SNIA\HBA\VXCORE' >/dev/null 2>&1 </dev/null ||
    fail "registered without being asked"
installer 0 /x "$installer"
state "$work/after"
diff "$work/before" "$work/after" >"$work/log" || fail "something is left: $(head -n 20 "$work/log")"
echo "Archives, signatures and the installer passed."
