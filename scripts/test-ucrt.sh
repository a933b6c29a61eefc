#!/usr/bin/env bash
# Builds the whole suite for the UCRT, and runs it: the counterpart of scripts/test.sh for the archive
# kestraboot-VERSION-win64-ucrt.zip. Installs missing packages; Debian has the compiler, g++-mingw-w64-ucrt64, from 13 on.
#   --tests-regex REGEX      only the tests whose names match
#   --exclude-regex REGEX    without the tests whose names match
set -euo pipefail
. "$(dirname "$0")/usage.sh"
help_wanted "$@"
chosen=()
while [ $# -gt 0 ]; do
    case "$# $1" in
    '1 '*) wrong_usage "not understood: $1" ;;
    *' --tests-regex' | *' --exclude-regex') chosen+=("$1" "$2") && shift 2 ;;
    *) wrong_usage "no such option: $1" ;;
    esac
done
cd "$(dirname "$0")/.."

scripts/setup.sh ucrt
cmake --preset ucrt >/dev/null
cmake --build --preset ucrt
ctest --preset ucrt --parallel 3 "${chosen[@]}"
