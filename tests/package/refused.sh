#!/usr/bin/env bash
# A host with another C++ runtime than the library's is refused by the headers, in a sentence that says why. The other
# runtimes are stand-ins: a <cstddef> that looks like theirs.
#   refused.sh COMPILER SOURCE-FOLDER WORK-FOLDER
set -euo pipefail
compiler=$1 source=$2 work=$3
rm -rf "$work"

# compiles [OPTION ...]: a host that includes everything
compiles() {
    echo '#include <kestraboot/kestraboot.h>' |
        "$compiler" -std=c++17 -fsyntax-only -I"$source/include" "$@" -x c++ - 2>"$work/said"
}
# refused SENTENCE [OPTION ...]
refused() {
    local sentence=$1
    shift
    ! compiles "$@" || { echo "not refused: $*"; exit 1; }
    grep -q "error: .*kestraboot: .*$sentence" "$work/said" || { cat "$work/said"; echo "does not say: $sentence"; exit 1; }
}
# looks_like NAME TEXT: a folder with such a <cstddef>
looks_like() {
    mkdir -p "$work/$1"
    printf '#include_next <cstddef>\n%s\n' "$2" >"$work/$1/cstddef"
}
looks_like same ''
looks_like another-library '#undef __GLIBCXX__'
looks_like other-threads '#undef _GLIBCXX_HAS_GTHREADS'

compiles -isystem "$work/same" || { cat "$work/said"; exit 1; }
refused 'libstdc++ with posix threads' -isystem "$work/another-library"
refused 'libstdc++ with posix threads' -isystem "$work/other-threads"
refused 'another layout' -D_GLIBCXX_DEBUG
echo "refused: three of three, and the library's own is not"
