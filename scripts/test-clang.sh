#!/usr/bin/env bash
# Builds the whole suite with the second compiler and its linker, and runs it; meanwhile runs clang-tidy over the
# product. If only some tests are chosen, only they and the product are built. Installs missing packages.
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

scripts/setup.sh
cmake --preset clang >/dev/null
targets=all
if [ ${#chosen[@]} -gt 0 ]; then
    targets="product $(scripts/test_targets.py clang "${chosen[@]}")"
fi
nice -n 19 cmake --build --preset clang --target $targets

log=build/lint.log
nice -n 19 scripts/checks/lint.py build/clang >$log 2>&1 &
lint=$!
passed=0
ctest --preset clang --parallel 2 "${chosen[@]}" || passed=1
wait $lint || passed=1
cat $log
exit $passed
