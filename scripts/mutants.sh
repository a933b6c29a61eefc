#!/usr/bin/env bash
# Breaks the product in one place at a time and runs the tests of that place. If they pass, there is a gap. Works on a
# copy of the committed sources in build/mutants. A mutant takes 5 s to 5 minutes; scripts/test.sh does not run it.
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
    grep -qxF -- "$1" <<<"$(scripts/mutants/run.py --rooms)" || wrong_usage "no such room: $1"
    room=$1 && shift
    ;;
esac
number=${1:-30}
case $number in *[!0-9]* | 0) wrong_usage "no number of mutants: $number" ;; esac
[ $# -le 1 ] || wrong_usage "too many arguments"

scripts/setup.sh
folder=$PWD/build/mutants
tree=$folder/tree build=$folder/build
mkdir -p "$tree"
# Writes only the files that differ, with the current time: the build then repeats what the last mutant has changed.
GIT_INDEX_FILE=$folder/index git --work-tree="$tree" read-tree --reset -u HEAD
# LLVM's linker for the product too, where the tests have it: GNU's takes seconds, and here they count in each mutant.
linker="-B$build/test-linker/ -fno-use-linker-plugin"
cmake -S "$tree" -B "$build" -G Ninja --toolchain "$tree/cmake/toolchain-mingw-gcc.cmake" -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DCMAKE_UNITY_BUILD=ON \
    -DCMAKE_EXE_LINKER_FLAGS="$linker" -DCMAKE_SHARED_LINKER_FLAGS="$linker" >/dev/null
trap 'scripts/test-prefix.sh end "$build/wine"' EXIT
scripts/test-prefix.sh begin "$build/wine"
echo "commit $(git rev-parse --short HEAD)"
scripts/mutants/run.py "$tree" "$build" "$number" "${KESTRABOOT_SEED:-$(date +%s)}" ${room:+"$room"}
