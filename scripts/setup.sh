#!/usr/bin/env bash
# Installs missing packages, on Debian 12, Debian 13 and systems derived from them. Can be run any number of times.
#   setup.sh              the packages for the demo and for scripts/test.sh: second compiler, linter, formatter, ...
#   setup.sh demo         the packages that build and run the demo
#   setup.sh curves       the package with which scripts/bench.sh --record draws
#   setup.sh screenshots  the packages for scripts/screenshots.sh
#   setup.sh ucrt         the packages for scripts/test-ucrt.sh; Debian has that compiler from 13 on
set -euo pipefail
. "$(dirname "$0")/usage.sh"

demo=(
    cmake ninja-build
    g++-mingw-w64-x86-64-posix                     # the compiler: MinGW-w64, posix threads
    googletest                                     # its sources; they are cross-built with the tests
    libcli11-dev nlohmann-json3-dev                # header-only: the tools' options and JSON
    libjpeg-turbo-progs                            # makes the demo's picture
    python3                                        # writes the bill of materials
    wine wine64                                    # runs the programs
)
suite=(
    "${demo[@]}"
    doxygen                                        # the reference of the exported interface
    git
    msitools wixl                                  # make the sample installer
    openssl osslsigncode                           # sign, for the test of signatures
    pkgconf                                        # reads the package's pkg-config file
    python3-jsonschema                             # validates the tools' JSON against its schema
)
all=(
    "${suite[@]}"
    clang clang-tidy                               # the second compiler and the linter, in the release's versions
    codespell                                      # checks the spelling
    cppcheck                                       # a second static analyser
    lld                                            # the second compiler's linker
)

help_wanted "$@"
case "$# ${1-}" in
'0 ') packages=("${all[@]}") ;;
'1 demo') packages=("${demo[@]}") ;;
'1 curves') packages=(python3-matplotlib) ;;
'1 screenshots') packages=("${demo[@]}" xvfb imagemagick fonts-wine) ;; # with the font of the title bar's buttons
'1 ucrt') packages=("${suite[@]}" g++-mingw-w64-ucrt64) ;;
*) wrong_usage "no such group of packages: $*" ;;
esac
# One version of the formatter decides the format. Later releases lack it, and scripts/test.sh then prints that it skips it.
if [ $# -eq 0 ]; then
    case $(. /etc/os-release && echo "$ID ${VERSION_ID-}") in
    'debian 12' | 'ubuntu 24.04') packages+=(clang-format-14) ;;
    esac
fi
for program in apt-get dpkg-query; do
    command -v $program >/dev/null || {
        echo "setup.sh: there is no $program: install the counterparts of these by hand: ${packages[*]}" >&2
        exit 1
    }
done

missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" != 0 ]; then
    command -v sudo >/dev/null || {
        echo "setup.sh: these packages are missing, and only root can install them (there is no sudo):" >&2
        echo "    apt-get install --no-install-recommends ${missing[*]}" >&2
        exit 1
    }
    as_root=(sudo)
fi
echo "== Installing: ${missing[*]}"
"${as_root[@]}" apt-get -qq update
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -y --no-install-recommends install "${missing[@]}" \
    </dev/null | sed -nu 's/^Unpacking \([^ ]*\).*/   \1/p' || {
    echo "setup.sh: apt-get did not install them (its messages are above); this release may lack one of: ${missing[*]}" >&2
    exit 1
}
