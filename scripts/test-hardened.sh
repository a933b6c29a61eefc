#!/usr/bin/env bash
# Runs the whole suite twice more. Undefined behaviour, misuse of the standard library and overruns of the stack
# terminate a test. Each block of the heap touches an inaccessible page: with its end, then with its start.
# Takes no arguments. Installs missing packages.
set -euo pipefail
. "$(dirname "$0")/usage.sh"
no_arguments "$@"
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset hardened >/dev/null
cmake --build --preset hardened
for side in end start; do
    printf '\n== Blocks lie with their %s against an inaccessible page (%d s)\n' $side $SECONDS
    # A heap of pages is slow, so fuzzing has fewer cases.
    KESTRABOOT_FUZZ_CASES=100 KESTRABOOT_GUARD=$side ctest --preset hardened --parallel 2
done
