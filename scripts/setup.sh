#!/usr/bin/env bash
# Installs what building and testing needs on Debian 12 and is not there yet. Can be run any number of times.
set -euo pipefail

packages=(
    clang clang-format-14 clang-tidy-14            # the second compiler, formatter, linter
    cmake ninja-build git
    cppcheck                                       # a second opinion beside the linter's
    doxygen                                        # the reference of the exported interface
    g++-mingw-w64-x86-64-posix                     # the compiler: MinGW-w64, posix threads
    googletest                                     # its sources, cross-built with the tests
    libjpeg-turbo-progs                            # makes the demo's picture
    lld                                            # the second compiler's linker
    python3                                        # the checks of the tree
    wine wine64                                    # runs what was built
)

missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

echo "== Installing: ${missing[*]}"
as_root=()
[ "$(id -u)" = 0 ] || as_root=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get -qq update
"${as_root[@]}" apt-get -y --no-install-recommends install "${missing[@]}" </dev/null |
    sed -nu 's/^Unpacking \([^ ]*\).*/   \1/p'
