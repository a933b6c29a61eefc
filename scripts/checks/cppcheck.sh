#!/usr/bin/env bash
# Runs cppcheck, a second static analyser: over the product with inconclusive findings, over tests and benchmarks
# without findings of style. cppcheck.txt lists the exceptions, with the reason of each. cppcheck keeps its findings in
# build/cppcheck, and analyses a file again only if it, one of its headers, the options or the exceptions have changed.
set -euo pipefail
cd "$(dirname "$0")/../.."

# look NAMES... -- OPTIONS...: checks those folders
look() {
    local rooms=() kept
    while [ "$1" != -- ]; do rooms+=("$1") && shift; done
    shift
    # cppcheck does not see a change of its exceptions, nor in all versions one of its options.
    kept=build/cppcheck/$({ cppcheck --version && echo "$*" && cat scripts/checks/cppcheck.sh scripts/checks/cppcheck.txt; } |
        sha256sum | cut -c1-12)
    mkdir -p "$kept"
    echo "cppcheck: $(find "${rooms[@]}" -name '*.cpp' | wc -l) files in ${rooms[*]}"
    cppcheck --quiet --error-exitcode=1 -j"$(nproc)" --cppcheck-build-dir="$kept" "$@" \
        --suppressions-list=scripts/checks/cppcheck.txt \
        --std=c++20 --language=c++ --platform=win64 --library=windows,googletest \
        -I. -Iinclude -DUNICODE -D_UNICODE -D_WIN32 -D_WIN64 "${rooms[@]}"
}
look boot foundation include launcher legacy registry samples service tools trackers -- \
    --enable=warning,performance,portability,style --inconclusive -DKESTRABOOT_BUILDING_LIBRARY
look tests bench -- --enable=warning,performance,portability
