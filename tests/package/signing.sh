#!/usr/bin/env bash
# Packs a build with a command that signs, and verifies each signature: our binaries and the archives have one, and the
# binaries of others have none. The verification detects a changed byte.
#   signing.sh BUILD-FOLDER SOURCE-FOLDER
set -euo pipefail
build=$1 source=$2
work=$build/signing-check
rm -rf "$work"
mkdir -p "$work"
fail() { echo "failed: $*"; exit 1; }

openssl req -x509 -newkey rsa:2048 -nodes -subj "/CN=Corvane signing test" -days 2 -addext extendedKeyUsage=codeSigning \
    -keyout "$work/key.pem" -out "$work/certificate.pem" 2>/dev/null
export SIGNING_FOLDER=$work
KESTRABOOT_SIGN_COMMAND=$source/tests/package/sign.sh cpack --config "$build/CPackConfig.cmake" -B "$work/packed" \
    >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }

verify_archive() {
    openssl cms -verify -binary -inform DER -in "$1.p7s" -content "${2:-$1}" -CAfile "$work/certificate.pem" \
        -purpose any -out /dev/null 2>/dev/null
}
archives=0
for archive in "$work"/packed/*.zip; do
    verify_archive "$archive" || fail "the signature of $archive"
    archives=$((archives + 1))
done
[ $archives -gt 0 ] || fail "no archive"
{ cat "$archive"; printf x; } >"$work/changed.zip"
! verify_archive "$archive" "$work/changed.zip" || fail "a changed archive verifies"

main=$(find "$work/packed" -maxdepth 1 -name '*.zip' ! -name '*-symbols.zip')
(cd "$work" && cmake -E tar xf "$main")
unpacked=$work/$(basename "$main" .zip)
verify_binary() { osslsigncode verify -CAfile "$work/certificate.pem" -TSA-CAfile "$work/certificate.pem" -in "$1" 2>&1; }
signed=0 left=0
for binary in "$unpacked"/bin/* "$unpacked"/samples/simulators/bin/*; do
    case $(basename "$binary") in
    lib*) # the runtime is not ours to sign
        ! verify_binary "$binary" >"$work/log" && grep -q "No signature found" "$work/log" || fail "$binary is signed"
        left=$((left + 1))
        ;;
    *)
        verify_binary "$binary" >"$work/log" || { cat "$work/log"; fail "the signature of $binary"; }
        signed=$((signed + 1))
        ;;
    esac
done
[ $signed -gt 0 ] && [ $left = 3 ] || fail "$signed signed, $left left unsigned"
python3 - "$unpacked/bin/kestraboot.dll" "$work/changed.dll" <<'PY'
import sys
content = bytearray(open(sys.argv[1], "rb").read())
content[0x500] ^= 1
open(sys.argv[2], "wb").write(content)
PY
! verify_binary "$work/changed.dll" >/dev/null || fail "a changed library verifies"

# The list of the delivered files describes the signed ones.
"$source/scripts/checks/bill_of_materials.py" "$unpacked"
echo "$signed binaries and $archives archives signed and verified"
