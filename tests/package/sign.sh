#!/usr/bin/env bash
# A command that signs the file whose path it gets, in the form of KESTRABOOT_SIGN_COMMAND: a Windows binary in place,
# by Authenticode, and an archive by a detached signature beside it. SIGNING_FOLDER holds key.pem and certificate.pem.
set -euo pipefail
key=$SIGNING_FOLDER/key.pem certificate=$SIGNING_FOLDER/certificate.pem
case $1 in
*.zip)
    openssl cms -sign -binary -in "$1" -signer "$certificate" -inkey "$key" -outform DER -out "$1.p7s"
    ;;
*)
    osslsigncode sign -certs "$certificate" -key "$key" -h sha256 -n "Corvane Kestrafetch" -in "$1" -out "$1.signed"
    mv "$1.signed" "$1"
    ;;
esac >/dev/null
