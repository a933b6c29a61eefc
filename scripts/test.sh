#!/usr/bin/env bash
# Runs everything that must pass: format, the checks of the tree, the build, every test, the second compiler, the linter.
# Takes no arguments. Installs missing packages.
set -euo pipefail
. "$(dirname "$0")/usage.sh"
no_arguments "$@"
cd "$(dirname "$0")/.."

scripts/setup.sh

stage() { printf '\n== %s (%d s)\n' "$*" $SECONDS; }

stage "Format"
mapfile -t sources < <(find bench boot foundation include launcher legacy registry samples service tests tools trackers \
    -name '*.h' -o -name '*.cpp')
if command -v clang-format-14 >/dev/null; then
    clang-format-14 --dry-run -Werror "${sources[@]}"
    echo "${#sources[@]} files"
else
    echo "not checked: clang-format-14 is not installed, and other versions format differently; Debian 12 has it"
fi

stage "Trace table"
scripts/checks/trace_table.py

stage "Links between the pages"
scripts/checks/links.py

stage "Spelling"
codespell --ignore-words scripts/checks/spelling.txt $(git ls-files | grep -vE '\.(svg|png)$')
echo "no misspelling that codespell knows"

stage "Wording"
scripts/checks/prose.py

stage "Include directions"
scripts/checks/include_directions.py

stage "Size of the samples"
scripts/checks/sample_size.py

stage "Index of the tests"
scripts/test_index.py --check

stage "Reference"
scripts/checks/reference.py

stage "Interface"
scripts/checks/interface.py

stage "A second opinion"
scripts/checks/cppcheck.sh

stage "Build"
cmake --preset release >/dev/null
cmake --build --preset release --target all bench # the benchmarks are not run here, but must build

stage "Tests; meanwhile the second compiler's, and the linter"
log=build/clang.log
set -m # a process group of its own, so that finish() can terminate all of it
# Without the tests of the shipped programs and of the package: they take as long as all others, and GCC's are shipped.
# Nor those that count what a process leaves behind, which takes a machine of its own, and the longer ones that run
# nothing of this build. It uses the time in which the other tests wait: at the same priority it made them several times
# as long.
nice -n 10 scripts/test-clang.sh --exclude-regex \
    'system|guides|installer|package|real_windows.archive|faults|storms|drop_folder|^scripts|compiles_alone' \
    >$log 2>&1 </dev/null &
clang=$!
set +m
finish() {
    kill -- -$clang 2>/dev/null || true
    for build in release clang; do scripts/test-prefix.sh end build/$build/wine; done
}
trap finish EXIT
# Beside the second compiler a test takes several times as long as alone: its watchdog waits for that.
export KESTRABOOT_LONGEST_TEST=${KESTRABOOT_LONGEST_TEST:-150}
ctest --preset release --parallel 3 # many tests wait for their processes

stage "The second compiler and the linter"
tail -n +1 -f --pid=$clang $log
wait $clang

stage "All passed"
