#!/usr/bin/env bash
# The whole suite, built for the UCRT, and run: for the archive kestraboot-VERSION-win64-ucrt.zip what scripts/test.sh is
# for the other. Needs g++-mingw-w64-ucrt64 (Debian has it from 13 on); what else it needs and is not there yet it installs.
#   --tests-regex REGEX      only the tests whose names match
#   --exclude-regex REGEX    not those
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

command -v x86_64-w64-mingw32ucrt-g++ >/dev/null || {
    echo "test-ucrt.sh: there is no x86_64-w64-mingw32ucrt-g++: apt-get install g++-mingw-w64-ucrt64 (Debian 13, not 12)" >&2
    exit 1
}
scripts/setup.sh
cmake --preset ucrt >/dev/null
cmake --build --preset ucrt
ctest --preset ucrt --parallel 3 "${chosen[@]}"
