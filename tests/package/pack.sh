#!/usr/bin/env bash
# Packs a build into packed/ of the build folder's package-check.
#   pack.sh BUILD-FOLDER
set -euo pipefail
build=$1 work=$1/package-check
rm -rf "$work"
mkdir -p "$work"
cpack --config "$build/CPackConfig.cmake" -B "$work/packed" >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
ls -l "$work"/packed/*.zip
