#!/usr/bin/env bash
# The whole suite, built with the second compiler and its linker, and run; meanwhile clang-tidy over the product.
# Arguments go to ctest.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset clang >/dev/null
nice -n 19 cmake --build --preset clang

log=build/lint.log
nice -n 19 scripts/checks/lint.py build/clang >$log 2>&1 &
lint=$!
passed=0
ctest --preset clang --parallel 2 "$@" || passed=1
wait $lint || passed=1
cat $log
exit $passed
