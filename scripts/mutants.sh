#!/usr/bin/env bash
# Breaks the product in one place at a time and runs the tests of that place. If they pass, there is a gap. Works on a
# copy of the committed sources in build/mutants. Takes about 15 s for each mutant; scripts/test.sh does not run it.
#   mutants.sh [ROOM] [NUMBER]     NUMBER mutants of ROOM, or of each room (default 30); rooms: mutants.sh --rooms
#   KESTRABOOT_SEED=N              repeats the choice of another run, which prints N in its first line
# scripts/mutants/equivalent.txt lists the mutants that change no behaviour, with the reason. Exits with 1 if a room's
# tests detect less than 95% of the others.
set -euo pipefail
. "$(dirname "$0")/usage.sh"
help_wanted "$@"
cd "$(dirname "$0")/.."
if [ "${1-}" = --rooms ]; then exec scripts/mutants/run.py --rooms; fi
room=
case ${1-} in *[!0-9]*)
    scripts/mutants/run.py --rooms | grep -qxF -- "$1" || wrong_usage "no such room: $1"
    room=$1 && shift
    ;;
esac
number=${1:-30}
case $number in *[!0-9]* | 0) wrong_usage "no number of mutants: $number" ;; esac
[ $# -le 1 ] || wrong_usage "too many arguments"

scripts/setup.sh
tree=$PWD/build/mutants/tree build=$PWD/build/mutants/build
rm -rf "$tree"
mkdir -p build/mutants
git archive --format=tar --prefix=tree/ HEAD | tar -x -C build/mutants
# Without a history the copy cannot name its commit; nothing here needs the name.
cmake -S "$tree" -B "$build" -G Ninja --toolchain "$tree/cmake/toolchain-mingw-gcc.cmake" -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DCMAKE_UNITY_BUILD=ON >/dev/null
trap 'scripts/test-prefix.sh end "$build/wine"' EXIT
scripts/test-prefix.sh begin "$build/wine"
scripts/mutants/run.py "$tree" "$build" "$number" "${KESTRABOOT_SEED:-$(date +%s)}" ${room:+"$room"}
