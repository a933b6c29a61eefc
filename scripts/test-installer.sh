#!/usr/bin/env bash
# Tests every order in which the sample installer's two products are installed, upgraded, repaired and removed, and the
# failures. Takes about five minutes; the test `installer` runs two of the orders. Needs the build folder and the Wine
# prefix of the tests. build/release/installer/table.md then holds the state after each step.
# Takes no arguments.
set -euo pipefail
. "$(dirname "$0")/usage.sh"
no_arguments "$@"
cd "$(dirname "$0")/.."

cmake --preset release >/dev/null
cmake --build --preset release --target installer_tests
[ -d build/release/wine.pristine ] || scripts/test-prefix.sh begin "$PWD/build/release/wine"
mapfile -t orders < <(sed -n 's/^order_\(.*\)() {$/\1/p' tests/installer/orders.sh)
tests/installer/orders.sh build/release . build/release/wine build/release/installer "${orders[@]}"
