#!/usr/bin/env bash
# A second opinion beside the linter's: cppcheck over the product, with what it infers but cannot prove, and over tests
# and benchmarks without questions of style. What is not followed stands in cppcheck.txt, with the reason.
set -euo pipefail
cd "$(dirname "$0")/../.."

# look NAMES... -- OPTIONS...: over those folders
look() {
    local rooms=()
    while [ "$1" != -- ]; do rooms+=("$1") && shift; done
    shift
    echo "cppcheck: $(find "${rooms[@]}" -name '*.cpp' | wc -l) files in ${rooms[*]}"
    cppcheck --quiet --error-exitcode=1 -j"$(nproc)" "$@" \
        --suppressions-list=scripts/checks/cppcheck.txt \
        --std=c++20 --language=c++ --platform=win64 --library=windows,googletest \
        -I. -Iinclude -DUNICODE -D_UNICODE -D_WIN32 -D_WIN64 "${rooms[@]}"
}
look boot foundation include launcher legacy registry samples service tools trackers -- \
    --enable=warning,performance,portability,style --inconclusive -DKESTRABOOT_BUILDING_LIBRARY
look tests bench -- --enable=warning,performance,portability
