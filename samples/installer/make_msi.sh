#!/usr/bin/env bash
# Makes the MSI of a product with wixl, and adds what wixl 0.101 omits. Needs the Debian packages wixl and
# msitools, and python3.
#   make_msi.sh PRODUCT.wxi VERSION FOLDER RESULT.msi
# FOLDER holds the files to install and boot_actions.dll: the package's bin/ and the application.
set -euo pipefail
[ $# = 4 ] || { sed -n '2,5s/^# \?//p' "$0" >&2; exit 2; }
here=$(cd "$(dirname "$0")" && pwd)
product=$(realpath -- "$1") version=$2 folder=$3 msi=$(realpath -m -- "$4")

rm -f "$msi"
# wixl searches for files below the current folder alone.
(cd "$folder" && wixl --arch x64 --includedir "$(dirname "$product")" -D Wixl=1 -D ProductFile="$(basename "$product")" \
    -D Version="$version" --output "$msi" "$here/application.wxs")

set_in() { msibuild "$msi" -q "UPDATE \`$1\` SET \`$2\` = $3 WHERE \`$4\` = '$5'"; }

# Actions at a rollback (1024 + 256) and at the end (1024 + 512), which wixl makes immediate ones. 2048 stands for
# Impersonate="no", 64 for Return="ignore".
for action in "StartAgain 1281" "RestoreAutoRun 3329" "MakeDefault 3666" "MakeDefaultForUser 1618"; do
    set_in CustomAction Type "${action#* }" Action "${action% *}"
done
# Actions that run at once: wixl marks them Impersonate="no", which has no meaning for them.
for action in SetBootProgram SetEndAsUser SetEndAsAdministrator SetStartAgain; do
    set_in CustomAction Type 51 Action $action
done
for action in RememberAutoRun StartBoot; do
    set_in CustomAction Type 1 Action $action
done
# Properties that an installer's unelevated part passes to its elevated part (Secure="yes").
set_in Property Value "'BOOTSTART;MAKEDEFAULT;NEWERFOUND;OLDERFOUND'" Property SecureCustomProperties

# The version of each file that has one. Without it Windows Installer would keep every older file: one with a version
# goes before one without. Files with a version are compared by it, and not by their contents.
python3 - "$folder" <<'PY' | while read -r file version; do
import pathlib, struct, sys
for file in sorted(pathlib.Path(sys.argv[1]).iterdir()):
    data = file.read_bytes() if file.suffix in {".exe", ".dll"} else b""
    start = data.find(struct.pack("<I", 0xFEEF04BD))  # VS_FIXEDFILEINFO
    if start >= 0:
        high, low = struct.unpack_from("<II", data, start + 8)
        print(file.name, f"{high >> 16}.{high & 0xFFFF}.{low >> 16}.{low & 0xFFFF}")
PY
    key=$(msiinfo export "$msi" File | tr -d '\r' | awk -F'\t' -v name="$file" '$3 == name { print $1 }')
    [ -n "$key" ] || continue
    set_in File Version "'$version'" File "$key"
    set_in File Language "'1033'" File "$key"
    msibuild "$msi" -q "DELETE FROM \`MsiFileHash\` WHERE \`File_\` = '$key'"
done
