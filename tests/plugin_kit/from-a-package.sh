#!/usr/bin/env bash
# Installs the package and builds a plugin and a host from it with a CMake project that uses nothing else.
#   from-a-package.sh SOURCES BUILD TOOLCHAIN OBJDUMP
set -euo pipefail
sources=$1 build=$2 toolchain=$3 objdump=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/package" >/dev/null
cp -r "$sources/tests/plugin_kit/consumer" "$work/consumer"
cp "$sources"/samples/mox_plugin/*.{cpp,h} "$work/consumer"
cmake -S "$work/consumer" -B "$work/build" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
    -DCMAKE_PREFIX_PATH="$work/package"
cmake --build "$work/build"

# Whether a name is among the exports or imports of a module.
has() { [ "$("$objdump" -p "$1" | grep -cw -- "$2")" != 0 ]; }
for plugin in sample_plugin.mox bare_plugin.mox; do
    has "$work/build/$plugin" FxPluginMain || { echo "$plugin has no entry point"; exit 1; }
    ! has "$work/build/$plugin" kestraboot.dll || { echo "$plugin needs the library"; exit 1; }
done
has "$work/build/host.exe" kestraboot.dll || { echo "the host does not use the library"; exit 1; }
# The kit declares the entry point as exported; the library itself must not have one.
! has "$work/package/bin/kestraboot.dll" FxPluginMain || { echo "the library has the entry point"; exit 1; }
