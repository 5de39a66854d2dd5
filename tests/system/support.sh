#!/usr/bin/env bash
# Files for support as other programs read them: `unzip -t`, Python's zipfile, names that --redact
# must have masked, a disk that takes no more. Usage: support.sh BIN
set -euo pipefail
bin=$1
folder=$(mktemp -d)
trap 'wine "$bin/vxemu.exe" stop >/dev/null 2>&1 </dev/null || true; rm -rf "$folder"' EXIT

manager() { wine "$bin/vxmgr.exe" "$@" </dev/null 2>"$folder/err.txt"; }
fail() {
    echo "FAILED: $1"
    cat "$folder/err.txt"
    exit 1
}

wine "$bin/vxemu.exe" start --profile lab --fresh >/dev/null 2>&1 </dev/null
wine "$bin/vxmgr.exe" dump take -p scsi:3 --yes >/dev/null 2>&1 </dev/null || true
manager collect "$folder/whole.zip" --dump >/dev/null || fail "collect"
manager collect "$folder/masked.zip" --dump --redact >/dev/null || fail "collect --redact"
for file in whole masked; do
    unzip -tq "$folder/$file.zip" || fail "unzip -t $file"
done

python3 - "$folder" <<'END' || fail "contents"
import hashlib, json, re, sys, zipfile

folder = sys.argv[1]
secret = re.compile(rb"EMU7740A0001|U7740A0001P0|210[01]02454d00|21:0[01]:02:45|nqn\.20", re.IGNORECASE)
for name, masked in (("whole", False), ("masked", True)):
    with zipfile.ZipFile(folder + "/" + name + ".zip") as file:
        assert file.testzip() is None
        manifest = json.loads(file.read("MANIFEST.json"))
        members = {row["name"]: row for row in manifest["members"]}
        assert set(members) == set(file.namelist()) - {"MANIFEST.json"}
        assert not manifest["errors"], manifest["errors"]
        assert manifest["redacted"] is masked
        for member, row in members.items():
            content = file.read(member)
            assert hashlib.sha256(content).hexdigest() == row["sha256"], member
            assert len(content) == row["size"], member
            if member.startswith("documents/"):
                assert json.loads(content)["exit"] == row["exit"], member
            if masked:
                assert not secret.search(content), (member, secret.search(content))
        assert any(secret.search(file.read(member)) for member in members) is not masked
        assert {"report.html", "trace/scsi-3.txt", "documents/port_show.json",
                "documents/nvram_show/port-0.json"} <= set(members)
        assert any(member.startswith("dumps/") for member in members) is not masked
        # One name, one mask, in all members.
        port = json.loads(file.read("documents/port_show.json"))["result"]["ports"][0]
        own = json.loads(file.read("documents/nvram_show/port-0.json"))["result"]
        assert port["port_wwn"] == own["port_wwn"]
END

# A limit on the size of files stands for a disk that takes no more: nothing is left behind.
before=$(sha256sum <"$folder/whole.zip")
for command in collect report; do
    for name in new whole.zip; do
        (
            ulimit -f 8
            trap '' XFSZ
            wine "$bin/vxmgr.exe" "$command" "$folder/$name" --force >/dev/null 2>"$folder/err.txt" </dev/null
        ) && fail "$command does not see the full disk"
        grep -q "cannot be written" "$folder/err.txt" || fail "$command does not say so"
    done
done
[ "$before" = "$(sha256sum <"$folder/whole.zip")" ] || fail "the file that was there is another now"
[ ! -e "$folder/new" ] && [ ! -e "$folder/new.part" ] || fail "something is left behind"
