#!/usr/bin/env bash
# Installs a build into a folder of its own, builds the host in this folder against it, and runs that host from
# what was installed.  check.sh BUILD-FOLDER SOURCE-FOLDER WINE-PREFIX
set -euo pipefail
build=$1 source=$2 prefix=$3
. "$source/scripts/wine.sh"

package=$build/package-check
rm -rf "$package"
cmake --install "$build" --prefix "$package/installed" >/dev/null

for file in bin/kestraboot.dll bin/kestraboot.exe bin/libstdc++-6.dll bin/libgcc_s_seh-1.dll \
    bin/libwinpthread-1.dll include/kestraboot/kestraboot.h lib/libkestraboot.dll.a \
    lib/cmake/kestraboot/kestrabootConfig.cmake; do
    [ -f "$package/installed/$file" ] || { echo "not installed: $file"; exit 1; }
done
extra=$(cd "$package/installed" && find . -type f | grep -vE '^\./(bin/(kestraboot\.(dll|exe)|lib(stdc\+\+-6|gcc_s_seh-1|winpthread-1)\.dll)|include/kestraboot/[a-z_]+\.h|lib/libkestraboot\.dll\.a|lib/cmake/kestraboot/.*\.cmake)$' || true)
[ -z "$extra" ] || { echo "installed, but no part of the package: $extra"; exit 1; }

for file in bin/kestraboot.dll bin/kestraboot.exe; do
    sections=$(x86_64-w64-mingw32-objdump -h "$package/installed/$file")
    [[ $sections == *.rsrc* ]] || { echo "no version resource in $file"; exit 1; }
done

cmake -S "$source/tests/package/consumer" -B "$package/build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_TOOLCHAIN_FILE="$source/cmake/toolchain-mingw-gcc.cmake" \
    -Dkestraboot_DIR="$package/installed/lib/cmake/kestraboot" >/dev/null
cmake --build "$package/build"
cp "$package/build/host.exe" "$package/installed/bin/"
said=$(wine_run "$prefix" 60 "$package/installed/bin/host.exe" | tr -d '\r')
echo "the host says: $said"
[ "$said" = '-install, 0 applications' ]
