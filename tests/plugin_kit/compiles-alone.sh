#!/usr/bin/env bash
# Compiles the plugin kit alone, and the sample plugin with it, as C++11 to C++20 with both compilers.
#   compiles-alone.sh SOURCES GXX
set -euo pipefail
sources=$1 gxx=$2
warnings=(-Wall -Wextra -Wpedantic -Werror -Wconversion -Wsign-conversion -Wshadow -Wcast-qual
    -Wnon-virtual-dtor -Wold-style-cast -Wundef -Wmissing-declarations)

compile() { # COMPILER... : every standard, every source
    local standard
    for standard in 11 14 17 20; do
        "$@" -std=c++$standard "${warnings[@]}" -I"$sources/include" -fsyntax-only \
            "$sources/tests/plugin_kit/kit_alone.cpp" "$sources"/samples/mox_plugin/*.cpp
        echo "$1: C++$standard"
    done
}

compile "$gxx"
command -v clang++ >/dev/null || { echo "clang++ is missing: scripts/setup.sh installs it" >&2 && exit 1; }
headers=$(dirname "$("$gxx" -print-libgcc-file-name)")/include/c++
compile clang++ --target=x86_64-w64-mingw32 -isystem "$headers" -isystem "$headers/x86_64-w64-mingw32"
