#!/usr/bin/env bash
# The headers refuse a host with another runtime than the library's, in a sentence that says why. The other runtimes are
# stand-ins: a <cstddef> that looks like theirs. If a compiler for the other C runtime is installed, it is tested as
# well.
#   refused.sh COMPILER SOURCE-FOLDER GENERATED-HEADERS WORK-FOLDER
set -euo pipefail
compiler=$1 source=$2 generated=$3 work=$4
rm -rf "$work"

# compiles [OPTION ...]: compiles a host that includes all headers
compiles() {
    echo '#include <kestraboot/kestraboot.h>' |
        "$compiler" -std=c++17 -fsyntax-only "$@" -I"$source/include" -I"$generated" -x c++ - 2>"$work/said"
}
count=0
# refused SENTENCE [OPTION ...]
refused() {
    local sentence=$1
    shift
    ! compiles "$@" || { echo "not refused: $*"; exit 1; }
    grep -q "error: .*kestraboot: .*$sentence" "$work/said" || { cat "$work/said"; echo "the error does not contain: $sentence"; exit 1; }
    count=$((count + 1))
}
# looks_like NAME TEXT: makes a folder with such a <cstddef>
looks_like() {
    mkdir -p "$work/$1"
    printf '#include_next <cstddef>\n%s\n' "$2" >"$work/$1/cstddef"
}
looks_like same ''
looks_like another-library '#undef __GLIBCXX__'
looks_like other-threads '#undef _GLIBCXX_HAS_GTHREADS'
looks_like ucrt '#define _UCRT'
looks_like msvcrt '#undef _UCRT'
for for_ucrt in 0 1; do
    mkdir -p "$work/for-$for_ucrt/kestraboot"
    echo "#define KESTRABOOT_FOR_UCRT $for_ucrt" >"$work/for-$for_ucrt/kestraboot/c_runtime.h"
done

compiles -isystem "$work/same" || { cat "$work/said"; exit 1; }
refused 'libstdc++ with posix threads' -isystem "$work/another-library"
refused 'libstdc++ with posix threads' -isystem "$work/other-threads"
refused 'another layout' -D_GLIBCXX_DEBUG
for_msvcrt='the library is for msvcrt, the compiler links the UCRT'
for_the_ucrt='the library is for the UCRT, the compiler links msvcrt'
refused "$for_msvcrt" -I"$work/for-0" -isystem "$work/ucrt"
refused "$for_the_ucrt" -I"$work/for-1" -isystem "$work/msvcrt"
compiles -I"$work/for-0" -isystem "$work/msvcrt" || { cat "$work/said"; exit 1; }
compiles -I"$work/for-1" -isystem "$work/ucrt" || { cat "$work/said"; exit 1; }

# This build's own header, and an installed compiler of each kind. The compiler of this build is one.
with_own=0
while read -r other links_ucrt sentence; do
    if command -v "$other" >/dev/null; then
        compiler=$other
        if grep -q "KESTRABOOT_FOR_UCRT $links_ucrt" "$generated/kestraboot/c_runtime.h"; then
            compiles || { cat "$work/said"; exit 1; }
            with_own=1
        else
            refused "$sentence"
        fi
    fi
done <<EOF
x86_64-w64-mingw32-g++-posix 0 $for_the_ucrt
x86_64-w64-mingw32ucrt-g++ 1 $for_msvcrt
EOF
[ $with_own -eq 1 ] || { echo "the compiler of this build is missing" >&2 && exit 1; }
echo "refused: $count, and the library's own is not"
