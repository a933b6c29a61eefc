#!/usr/bin/env bash
# Everything that must pass: format, include directions, the build, every test, the second compiler, the linter.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh

stage() { printf '\n== %s (%d s)\n' "$*" $SECONDS; }

stage "Format"
mapfile -t sources < <(find bench boot foundation include launcher legacy registry samples service tests tools trackers \
    -name '*.h' -o -name '*.cpp')
clang-format-14 --dry-run -Werror "${sources[@]}"
echo "${#sources[@]} files"

stage "Trace table"
scripts/checks/trace_table.py

stage "Links between the pages"
scripts/checks/links.py

stage "Include directions"
scripts/checks/include_directions.py

stage "Reference"
scripts/checks/reference.py

stage "A second opinion"
scripts/checks/cppcheck.sh

stage "Build"
cmake --preset release >/dev/null
cmake --build --preset release

stage "Tests"
ctest --preset release --parallel 2

stage "The second compiler"
cmake --preset clang >/dev/null
cmake --build --preset clang --target product # the whole suite with it: scripts/test-clang.sh

stage "Linter"
scripts/checks/lint.py build/clang

stage "All passed"
