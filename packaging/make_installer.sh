#!/usr/bin/env bash
# Makes the installer of a staged folder. Usage: make_installer.sh FOLDER VERSION FILE.msi
# wixl knows nothing of the environment: the path comes behind it. Both tools write the time into the
# file, which is that of SOURCE_DATE_EPOCH here.
set -euo pipefail
when=$(date -u -d "@$SOURCE_DATE_EPOCH" "+%Y-%m-%d %H:%M:%S")
packaging=$(cd "$(dirname "$0")" && pwd)
above=$(dirname "$1")
sources=$above/$(basename "$3" .msi).wxs
(cd "$above" && python3 "$packaging/make_wxs.py" "$(basename "$1")" "$2") >"$sources"
on_path=$(sed -nE '/Name="OnPath"/{x;s/.*Component Id="([^"]*)".*/\1/p;q};h' "$sources")
(cd "$above" && faketime -f "$when" wixl --arch x64 -o "$3" "$(basename "$sources")")
package_code=$(sed -nE 's/.*<Package Id="([^"]*)".*/\1/p' "$sources")
faketime -f "$when" msibuild "$3" -s "Installation Database" "The VXMGMT authors" "x64;1033" "{$package_code}"
faketime -f "$when" msibuild "$3" \
    -q 'CREATE TABLE `Environment` (`Environment` CHAR(72) NOT NULL, `Name` CHAR(255) NOT NULL, `Value` CHAR(255), `Component_` CHAR(72) NOT NULL PRIMARY KEY `Environment`)' \
    -q "INSERT INTO \`Environment\` (\`Environment\`, \`Name\`, \`Value\`, \`Component_\`) VALUES ('Path', '=-*Path', '[~];[BINDIR]', '$on_path')" \
    -q "INSERT INTO \`InstallExecuteSequence\` (\`Action\`, \`Sequence\`) VALUES ('RemoveEnvironmentStrings', 3300)" \
    -q "INSERT INTO \`InstallExecuteSequence\` (\`Action\`, \`Sequence\`) VALUES ('WriteEnvironmentStrings', 5200)"
