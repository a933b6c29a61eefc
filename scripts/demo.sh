#!/usr/bin/env bash
# Shows the main job, end to end, on real input: builds, makes a Wine prefix of its own, and shows the live trace
# (time, process, line) while devices arrive and leave. Prints a table at the end; fails if a row is not as expected.
# Takes no arguments. Installs missing packages.
set -euo pipefail
. "$(dirname "$0")/usage.sh"
no_arguments "$@"
cd "$(dirname "$0")/.."
. scripts/wine.sh
. scripts/demo/stage.sh
. scripts/demo/cards.sh
. scripts/demo/applications.sh
. scripts/demo/imaging.sh
. scripts/demo/phones.sh

demo=$PWD/build/demo
bin=$PWD/build/release/bin
package=$demo/package
simulators=$package/samples/simulators/bin
prefix=$demo/wine

scripts/setup.sh demo

title "Build"
rm -rf "$demo"
mkdir -p "$demo"
cmake --preset release >"$demo/configure.log"
cmake --build --preset release --target product
cmake --install build/release --prefix "$package" >/dev/null

title "A Wine prefix of its own"
echo "   (waits up to 4 minutes for Wine to make it)"
trap 'trace_end; wine_prefix_end "$prefix"' EXIT
wine_prefix_make "$prefix" || { echo "demo: Wine made no prefix in $prefix within its time" >&2 && exit 1; }
wine_prefix_start "$prefix"
in_wine 30 reg add 'HKCU\Software\Wine\AppDefaults\kestraboot.exe' /v Version /d vista /f >/dev/null
install_viewer
install_still_imaging
install_wia_service
make_cards
trace_start

act_cards
act_applications
act_imaging
act_phone

trace_end
print_table
