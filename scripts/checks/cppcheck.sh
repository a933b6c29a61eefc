#!/usr/bin/env bash
# A second opinion beside the linter's: cppcheck over the product, with what it infers but cannot prove. What is
# not followed stands in cppcheck.txt, with the reason. Takes seconds.
set -euo pipefail
cd "$(dirname "$0")/../.."

rooms=(boot foundation include launcher legacy registry samples service tools trackers)
echo "cppcheck: $(find "${rooms[@]}" -name '*.cpp' | wc -l) files"
cppcheck --quiet --error-exitcode=1 -j"$(nproc)" \
    --enable=warning,performance,portability,style --inconclusive \
    --suppressions-list=scripts/checks/cppcheck.txt \
    --std=c++20 --language=c++ --platform=win64 --library=windows \
    -I. -Iinclude -DUNICODE -D_UNICODE -D_WIN32 -D_WIN64 -DKESTRABOOT_BUILDING_LIBRARY \
    "${rooms[@]}"
