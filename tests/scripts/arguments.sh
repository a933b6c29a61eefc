#!/usr/bin/env bash
# The scripts' behaviour before they begin: --help and a wrong argument print the usage and change nothing, and setup.sh
# installs the requested packages, for any user with the privileges. Nothing is installed: stand-ins report their calls.
#   arguments.sh SOURCE-FOLDER WORK-FOLDER
set -euo pipefail
source=$1 work=$2
rm -rf "$work"
mkdir -p "$work/bin" "$work/plain"
cd "$work"
fail() { echo "arguments: $*"; cat said 2>/dev/null || true; exit 1; }

export CALLS=$work/calls
stand_in() { # NAME COMMANDS: a program that records its call
    printf '#!/bin/bash\necho "%s $*" >>"$CALLS"\n%s\n' "$1" "$2" >"bin/$1"
    chmod +x "bin/$1"
}
for program in apt-get cmake wine wineserver ctest unshare debootstrap; do stand_in $program ''; done
# The packages of the list are installed, the others not; the test chooses the user.
stand_in dpkg-query 'grep -qx -- "${!#}" "$HERE" && echo "install ok installed"'
stand_in sudo 'exec "$@"'
stand_in id 'echo "$USER_ID"'
export HERE=$work/here USER_ID=0
: >"$HERE"
own=$work/bin:$PATH
# Without sudo, wherever it may be: the programs that setup.sh needs, and the stand-ins.
for program in awk basename bash cat dirname env grep sed; do ln -s "$(command -v $program)" "plain/$program"; done
for program in apt-get dpkg-query id; do cp bin/$program plain/; done
run() { # STATUS COMMAND ...: the command exits with that status
    local wanted=$1 status=0
    shift
    : >calls
    PATH=$own "$@" >said 2>errors </dev/null || status=$?
    cat errors >>said
    [ $status = "$wanted" ] || fail "$* exits with $status, not $wanted"
}
says() { grep -qF -- "$1" said || fail "the output does not contain: $1"; }
called() { grep -qF -- "$1" calls || { cat calls; fail "not called: $1"; }; }
nothing_called() { [ ! -s calls ] || { cat calls; fail "$* called these"; }; }

# ---- Each script by itself, from any folder
for script in "$source"/scripts/*.sh "$source"/scripts/demo_picture.py; do
    [ -x "$script" ] || continue # sourced, not called
    for argument in --help -h; do
        run 0 "$script" $argument
        [ -s said ] && [ ! -s errors ] || fail "$script $argument prints no usage"
        nothing_called "$script $argument"
    done
    run 2 "$script" --no-such-option
    [ -s errors ] || fail "$script prints no error"
    nothing_called "$script --no-such-option"
done
for called in 'setup.sh everything' 'setup.sh demo demo' 'demo.sh fast' 'test.sh -R card' 'test-clang.sh -R' \
    'test-ucrt.sh card' 'test-prefix.sh begin' 'test-debian.sh' 'test-debian.sh 7' 'bench.sh --rows' \
    'mutants.sh nowhere' 'mutants.sh 0' 'mutants.sh launcher 5 6'; do
    # shellcheck disable=SC2086 # words
    run 2 "$source"/scripts/$called
    nothing_called "$called"
done

# ---- The installed packages, and the installing user
run 0 "$source/scripts/setup.sh" demo
called " wine wine64"
! grep -Eq 'clang|doxygen|cppcheck|jsonschema' calls || { cat calls; fail "the demo installs packages that it does not need"; }
! grep -q '^sudo' calls || fail "root asks sudo"
run 0 "$source/scripts/setup.sh"
for package in g++-mingw-w64-x86-64-posix clang-tidy doxygen; do called " $package"; done
run 0 "$source/scripts/setup.sh" ucrt
called ' g++-mingw-w64-ucrt64'
! grep -Eq 'clang|codespell|cppcheck' calls || { cat calls; fail "the UCRT's suite installs packages that it does not need"; }
stand_in apt-get '[ "$1" != -y ]'
run 1 "$source/scripts/setup.sh" ucrt
says 'apt-get did not install them'
stand_in apt-get ''

printf '%s\n' cmake ninja-build g++-mingw-w64-x86-64-posix googletest libcli11-dev \
    nlohmann-json3-dev libjpeg-turbo-progs python3 wine >"$HERE"
USER_ID=1000 run 0 "$source/scripts/setup.sh" demo
called 'sudo apt-get -qq update'
called 'install wine64'
echo wine64 >>"$HERE"
run 0 "$source/scripts/setup.sh" demo
! grep -Eq 'apt-get|sudo' calls || fail "it installs although nothing is missing"

# ---- Neither root nor sudo; no Debian at all
: >"$HERE"
own=$work/plain
USER_ID=1000 run 1 "$source/scripts/setup.sh" demo
says 'apt-get install --no-install-recommends cmake ninja-build'
! grep -q apt-get calls || fail "it calls apt-get nevertheless"
rm plain/apt-get
run 1 "$source/scripts/setup.sh"
says 'there is no apt-get'
says ' doxygen '
echo "arguments: every script as expected"
